#pragma once

#include "base/filelock.h"
#include "favourites/radiomodel.h"

#include <QByteArray>
#include <QHash>
#include <QString>
#include <map>
#include <memory>
#include <optional>

class FileReplacement;

/// The file of the favourites rack: a keyed archive in a folder of the user's Music directory.
///
/// One object reads and saves for the whole program, because it remembers which files it has read whole or
/// written itself. A file that is not one of those, whether it could not be read, held more than is kept or
/// was changed by another program, is never written over: it is kept under a dated name. Main thread. Each
/// failure is logged in one line.
///
/// Of several programs the first one owns the file, from its reading to its end. The others read it and leave
/// it alone for their whole lives, also when the first one has ended: what they have read is old by then, and
/// saving it would undo what the first one has saved.
class FavouritesStore
{
public:
    /// The user's Music directory, without a "/" at its end; null where there is none.
    static QString musicDirectory();

    /// Whether anything of the name `folder`, be it a folder or not, is in the Music directory.
    static bool isFolderExistAtMusicFolder(const QString &folder);

    /// Makes the folder in the Music directory, which has to be there. False where it does not succeed, and
    /// where anything of that name is there already.
    static bool createDirectoryOnMusicDirectory(const QString &folder);

    /// Claims the file for this program, unless that has been done. False where another program owns it; the
    /// first time, a line in the log says so. Reading and saving claim it as well; this is for a folder that
    /// has been made after the reading.
    bool claim(const QString &folder, const QString &filename);

    /// Gives up the claim, so that the next program can own the file. Nothing is to be saved afterwards.
    void release();

    /// Writes the archive of `dataArray` to the file at once, readable by its owner only: the file holds the
    /// old list or the new one at any time. The previous one stays beside it, with "~" behind its name. False
    /// where it fails, and where another program owns the file; the file is then as it was. No folder is
    /// made.
    bool saveDataToStorageFolder(const QString &folder, const QString &filename,
                                 const StationRecords &dataArray);

    /// The list in the file; nothing where there is no file, it cannot be read, or it is no archive of a
    /// list. Elements that are no stations are left out. Removes the temporary files of interrupted saves,
    /// unless another program owns the file.
    std::optional<StationRecords> reaDataFromStorageFolder(const QString &folder, const QString &filename);

private:
    bool claim(const QString &path);
    void save(const QString &path, const StationRecords &stations);
    void keepPrevious(const FileReplacement &replacement, const QString &path) const;

    /// By path: a digest of what was read whole or written. The contents of such a file are in the rack as
    /// well.
    QHash<QString, QByteArray> known_;
    /// By path.
    std::map<QString, std::unique_ptr<const FileLock>> locks_;
};
