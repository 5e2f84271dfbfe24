#include "favourites/archive/favouritesstore.h"

#include "base/exception.h"
#include "base/filereplacement.h"
#include "favourites/archive/binaryplistform.h"
#include "favourites/archive/keyedarchive.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QLoggingCategory>
#include <QStandardPaths>

namespace {
Q_LOGGING_CATEGORY(lcFavourites, "plumtide.favourites")

/// Null where there is no Music directory.
QString pathOf(const QString &folder)
{
    const QString music = FavouritesStore::musicDirectory();
    return music.isNull() ? QString() : music + QLatin1Char('/') + folder;
}

QByteArray digestOf(const QByteArray &bytes)
{
    return QCryptographicHash::hash(bytes, QCryptographicHash::Sha256);
}

/// Of the file at `path`; empty where it cannot be read.
QByteArray digestAt(const QString &path)
{
    try {
        const std::optional<QByteArray> bytes = readRegularFile(path, BinaryPlistForm::maximumSize);
        return bytes ? digestOf(*bytes) : QByteArray();
    } catch (const Exception &) {
        return {};
    }
}

QString pathOf(const QString &folder, const QString &filename)
{
    const QString path = pathOf(folder);
    return path.isNull() ? QString() : path + QLatin1Char('/') + filename;
}
} // namespace

QString FavouritesStore::musicDirectory()
{
    const QString path = QStandardPaths::standardLocations(QStandardPaths::MusicLocation).value(0);
    // A relative path is ignored: it would depend on where the program was started.
    return QDir::isAbsolutePath(path) ? QDir::cleanPath(path) : QString();
}

bool FavouritesStore::isFolderExistAtMusicFolder(const QString &folder)
{
    const QString path = pathOf(folder);
    return !path.isNull() && QFileInfo::exists(path);
}

bool FavouritesStore::createDirectoryOnMusicDirectory(const QString &folder)
{
    const QString path = pathOf(folder);
    return !path.isNull() && !QFileInfo::exists(path) && QDir().mkdir(path);
}

bool FavouritesStore::claim(const QString &folder, const QString &filename)
{
    return claim(pathOf(folder, filename));
}

void FavouritesStore::release()
{
    std::erase_if(locks_, [](const auto &entry) {
        return entry.second && entry.second->state() == FileLock::State::Held;
    });
}

bool FavouritesStore::claim(const QString &path)
{
    if (path.isNull()) {
        return true;
    }
    auto &lock = locks_[path];
    if (lock && lock->state() != FileLock::State::Unavailable) {
        return lock->state() == FileLock::State::Held;
    }
    lock = std::make_unique<const FileLock>(path);
    if (lock->state() == FileLock::State::Taken) {
        qCWarning(lcFavourites).noquote()
            << "another program has the favourites in" << path << "- they are shown, and not saved here";
        return false;
    }
    // A file that cannot be locked is still the user's to read and save.
    return true;
}

bool FavouritesStore::saveDataToStorageFolder(const QString &folder, const QString &filename,
                                              const StationRecords &dataArray)
{
    const QString path = pathOf(folder, filename);
    if (!claim(path)) {
        return false;
    }
    try {
        save(path, dataArray);
        return true;
    } catch (const Exception &exception) {
        qCWarning(lcFavourites).noquote()
            << "cannot save the favourites in" << path << "-" << exception.reason();
        return false;
    }
}

std::optional<StationRecords> FavouritesStore::reaDataFromStorageFolder(const QString &folder,
                                                                        const QString &filename)
{
    const QString path = pathOf(folder, filename);
    known_.remove(path);
    if (path.isNull()) {
        return std::nullopt;
    }
    try {
        if (claim(path)) {
            FileReplacement::removeStrays(path);
        }
        const std::optional<QByteArray> file = readRegularFile(path, BinaryPlistForm::maximumSize);
        if (!file) {
            return std::nullopt;
        }
        const auto list = KeyedUnarchiver::unarchiveObjectWithData(*file);
        if (!list) {
            throw Exception(QStringLiteral("it is no archive of a list"));
        }
        if (list->whole) {
            known_.insert(path, digestOf(*file));
        } else {
            qCWarning(lcFavourites).noquote() << "not everything could be read from" << path;
        }
        return list->stations;
    } catch (const Exception &exception) {
        qCWarning(lcFavourites).noquote()
            << "cannot read the favourites in" << path << "-" << exception.reason();
        return std::nullopt;
    }
}

void FavouritesStore::save(const QString &path, const StationRecords &stations)
{
    if (path.isNull()) {
        throw Exception(QStringLiteral("there is no Music directory"));
    }
    const QByteArray bytes = KeyedArchiver::archivedDataWithRootObject(stations);
    if (bytes.isNull()) {
        throw Exception(QStringLiteral("there are too many of them"));
    }
    FileReplacement replacement(path);
    if (!replacement.holds(bytes)) {
        replacement.write(bytes);
        keepPrevious(replacement, path);
        replacement.commit();
    }
    known_.insert(path, digestOf(bytes));
    replacement.syncFolder();
}

void FavouritesStore::keepPrevious(const FileReplacement &replacement, const QString &path) const
{
    if (!replacement.isThere()) {
        return;
    }
    const QByteArray present = digestAt(path);
    if (present.isNull() || known_.value(path) != present) {
        // It may be the only copy of its contents: where it cannot be kept, the save fails.
        const QString kept = replacement.keepDated();
        qCWarning(lcFavourites).noquote()
            << path << "is not what was read or saved last; it is kept as" << kept;
        return;
    }
    try {
        replacement.keepBackup();
    } catch (const Exception &exception) {
        qCWarning(lcFavourites).noquote() << "no backup of" << path << "-" << exception.reason();
    }
}
