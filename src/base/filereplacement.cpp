#include "base/filereplacement.h"

#include "base/exception.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace {
constexpr mode_t ownerOnly = 0600;
constexpr mode_t everybodyElse = 0077;
constexpr mode_t permissions = 07777;
constexpr int readingFlags = O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;

[[noreturn]] void raiseError(const char *what)
{
    throw Exception(QStringLiteral("%1: %2").arg(QLatin1StringView(what), qt_error_string(errno)));
}

/// Owns a file descriptor and closes it.
class Descriptor
{
public:
    explicit Descriptor(int number)
        : number_(number)
    {
    }
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;
    ~Descriptor()
    {
        if (number_ >= 0) {
            ::close(number_);
        }
    }

    int number() const { return number_; }
    bool isOpen() const { return number_ >= 0; }
    bool close() { return ::close(std::exchange(number_, -1)) == 0; }

private:
    int number_;
};

/// As many bytes as there are, up to `size`; -1 on a failure.
ssize_t readUpTo(int file, char *bytes, qsizetype size)
{
    ssize_t total = 0;
    while (total < size) {
        const ssize_t got = ::read(file, bytes + total, static_cast<std::size_t>(size - total));
        if (got < 0 && errno != EINTR) {
            return -1;
        }
        if (got == 0) {
            break;
        }
        total += got > 0 ? got : 0;
    }
    return total;
}

bool writeAll(int file, QByteArrayView bytes)
{
    while (!bytes.isEmpty()) {
        const ssize_t put = ::write(file, bytes.data(), static_cast<std::size_t>(bytes.size()));
        if (put < 0 && errno != EINTR) {
            return false;
        }
        bytes = bytes.sliced(put > 0 ? put : 0);
    }
    return true;
}

bool copyAll(int from, int to)
{
    std::array<char, 65536> block{};
    ssize_t size = 0;
    do {
        size = readUpTo(from, block.data(), block.size());
    } while (size > 0 && writeAll(to, {block.data(), size}));
    return size == 0 && ::fsync(to) == 0;
}

QByteArray folderOf(const QByteArray &path)
{
    return path.left(path.lastIndexOf('/') + 1);
}

QByteArray nameOf(const QByteArray &path)
{
    return path.mid(path.lastIndexOf('/') + 1);
}

/// Temporary files of `target` are called like this and six more characters.
QByteArray temporaryName(const QByteArray &target)
{
    return '.' + nameOf(target) + ".saving-";
}

/// Nothing where nothing stands under `path`, links followed.
std::optional<struct stat> statusOf(const QByteArray &path)
{
    struct stat status
    {
    };
    if (::stat(path.constData(), &status) == 0) {
        return status;
    }
    if (errno != ENOENT && errno != ENOTDIR) {
        raiseError("cannot look at it");
    }
    return std::nullopt;
}

void requireRegular(const struct stat &status)
{
    if (!S_ISREG(status.st_mode)) {
        throw Exception(QStringLiteral("it is no regular file"));
    }
}

} // namespace

std::optional<QByteArray> readRegularFile(const QString &path, qsizetype limit)
{
    const QByteArray name = QFile::encodeName(path);
    // Before it is opened: on some devices opening alone has effects.
    std::optional<struct stat> status = statusOf(name);
    if (!status) {
        return std::nullopt;
    }
    requireRegular(*status);
    const Descriptor file(::open(name.constData(), readingFlags));
    if (!file.isOpen() || ::fstat(file.number(), &*status) != 0) {
        raiseError("cannot open it");
    }
    requireRegular(*status);
    const auto raiseLength = [] { throw Exception(QStringLiteral("it is too long")); };
    if (status->st_size > limit) {
        raiseLength();
    }
    // One byte more tells whether it grows while it is read.
    QByteArray bytes(static_cast<qsizetype>(status->st_size) + 1, Qt::Uninitialized);
    const ssize_t size = readUpTo(file.number(), bytes.data(), bytes.size());
    if (size < 0) {
        raiseError("cannot read it");
    }
    if (size > limit) {
        raiseLength();
    }
    bytes.truncate(size);
    return bytes;
}

FileReplacement::FileReplacement(const QString &path)
    : target_(behindLinks(path))
{
    const std::optional<struct stat> status = statusOf(target_);
    if (!status) {
        return;
    }
    requireRegular(*status);
    // A write-protected file stays, although its folder would allow a replacement.
    if (::faccessat(AT_FDCWD, target_.constData(), W_OK, AT_EACCESS) != 0) {
        raiseError("cannot write to it");
    }
}

FileReplacement::~FileReplacement()
{
    if (!temporary_.isEmpty()) {
        ::unlink(temporary_.constData());
    }
    const Descriptor closed(open_);
}

QByteArray FileReplacement::behindLinks(const QString &path)
{
    QByteArray target = QFile::encodeName(path);
    constexpr int furthest = 40;
    for (int hops = 0; hops < furthest; ++hops) {
        std::array<char, PATH_MAX> link{};
        const ssize_t size = ::readlink(target.constData(), link.data(), link.size());
        if (size < 0) {
            return target;
        }
        const QByteArray next(link.data(), size);
        target = next.startsWith('/') ? next : folderOf(target) + next;
    }
    errno = ELOOP;
    raiseError("cannot follow the link");
}

void FileReplacement::removeStrays(const QString &path)
{
    constexpr qsizetype randomCharacters = 6;
    const QByteArray target = behindLinks(path);
    const QString beginning = QFile::decodeName(temporaryName(target));
    const QDir folder(QFile::decodeName(folderOf(target)));
    const QStringList names = folder.entryList(QDir::Files | QDir::Hidden | QDir::NoSymLinks);
    for (const QString &name : names) {
        const QByteArray stray = QFile::encodeName(folder.filePath(name));
        if (name.startsWith(beginning) && name.size() == beginning.size() + randomCharacters) {
            const Descriptor file(::open(stray.constData(), readingFlags));
            if (!file.isOpen() || ::flock(file.number(), LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK) {
                ::unlink(stray.constData());
            }
        }
    }
}

bool FileReplacement::isThere() const
{
    return statusOf(target_).has_value();
}

bool FileReplacement::holds(const QByteArray &bytes) const
{
    const Descriptor file(::open(target_.constData(), readingFlags));
    struct stat status
    {
    };
    if (!file.isOpen() || ::fstat(file.number(), &status) != 0 || status.st_size != bytes.size() ||
        (status.st_mode & permissions) != ownerOnly) {
        return false;
    }
    QByteArray held(bytes.size() + 1, Qt::Uninitialized);
    held.truncate(std::max<ssize_t>(readUpTo(file.number(), held.data(), held.size()), 0));
    return held == bytes && ::fsync(file.number()) == 0;
}

void FileReplacement::write(const QByteArray &bytes)
{
    QByteArray name = folderOf(target_) + temporaryName(target_) + "XXXXXX";
    open_ = ::mkostemp(name.data(), O_CLOEXEC);
    if (open_ < 0) {
        raiseError("cannot write beside it");
    }
    temporary_ = name;
    // Where the file system has no locks, no other program relies on one.
    ::flock(open_, LOCK_EX | LOCK_NB);
    // The mode is the default one of a temporary file, less what the user's mask takes away.
    if (::fchmod(open_, ownerOnly) != 0 || !writeAll(open_, bytes) || ::fsync(open_) != 0) {
        raiseError("cannot write beside it");
    }
}

void FileReplacement::keepBackup() const
{
    // Under another name first: the old backup goes only when the new one is there.
    const QByteArray fresh = folderOf(target_) + temporaryName(target_) + "backup";
    const QByteArray backup = target_ + '~';
    ::unlink(fresh.constData());
    if (!keepAs(fresh) || ::rename(fresh.constData(), backup.constData()) != 0) {
        raiseError("cannot keep a backup");
    }
    // rename() does nothing where both names are of the same file.
    ::unlink(fresh.constData());
}

QString FileReplacement::keepDated() const
{
    const QString time = QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd'T'HH-mm-ss"));
    const QByteArray dated = target_ + '.' + time.toLatin1();
    QByteArray path = dated;
    constexpr int most = 1000;
    for (int number = 2; !keepAs(path); ++number) {
        if (errno != EEXIST || number > most) {
            raiseError("cannot keep what stands there");
        }
        path = dated + '-' + QByteArray::number(number);
    }
    return QFile::decodeName(path);
}

void FileReplacement::commit()
{
    if (::rename(temporary_.constData(), target_.constData()) != 0) {
        raiseError("cannot put it in place");
    }
    temporary_.clear();
}

void FileReplacement::syncFolder() const
{
    const Descriptor folder(::open(folderOf(target_).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    // Some file systems cannot sync a folder.
    if (folder.isOpen() && ::fsync(folder.number()) != 0 && errno != EINVAL) {
        raiseError("cannot bring the folder to the disk");
    }
}

bool FileReplacement::keepAs(const QByteArray &path) const
{
    struct stat status
    {
    };
    if (::link(target_.constData(), path.constData()) == 0) {
        // The contents are private. The file is about to lose its own name, so that this changes the kept one
        // only.
        if (::stat(path.constData(), &status) == 0 && (status.st_mode & everybodyElse) != 0) {
            ::chmod(path.constData(), status.st_mode & permissions & ~everybodyElse);
        }
        return true;
    }
    if (errno == EEXIST) {
        return false;
    }
    const Descriptor copy(::open(path.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, ownerOnly));
    if (!copy.isOpen()) {
        return false;
    }
    const Descriptor file(::open(target_.constData(), readingFlags));
    if (file.isOpen() && copyAll(file.number(), copy.number())) {
        return true;
    }
    const int error = errno;
    ::unlink(path.constData());
    errno = error;
    return false;
}
