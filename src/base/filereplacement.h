#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

/// The contents of the regular file at `path`, symbolic links followed; nothing where there is no such file.
/// Never waits for a pipe or a device. Raises Exception where `path` is something else, cannot be read, or is
/// longer than `limit` bytes. Any thread.
std::optional<QByteArray> readRegularFile(const QString &path, qsizetype limit);

/// Replaces a file's contents atomically: whenever the program is stopped, the file holds the old contents or
/// the new ones. One object for one replacement; any thread.
///
/// Where the path is a symbolic link, the file that it leads to is replaced, whether it is there yet or not.
/// All methods raise Exception where they fail; but for syncFolder(), the file is then as it was.
class FileReplacement
{
public:
    /// Raises Exception where something other than a regular file stands there, or one that is not writable.
    explicit FileReplacement(const QString &path);
    FileReplacement(const FileReplacement &) = delete;
    FileReplacement &operator=(const FileReplacement &) = delete;
    /// Removes what write() has written and commit() has not renamed.
    ~FileReplacement();

    /// The path of the file that is replaced, in the file system's encoding: where the links at `path` lead,
    /// whether or not there is a file.
    static QByteArray behindLinks(const QString &path);

    /// Removes the temporary files of earlier replacements of the file at `path` that were interrupted; one
    /// that another program is writing stays.
    static void removeStrays(const QString &path);

    /// Whether there is a file now.
    bool isThere() const;
    /// Whether the file holds `bytes` already, readable by its owner only, and synced to the disk.
    bool holds(const QByteArray &bytes) const;

    /// Writes `bytes` to a temporary file beside the file, readable by its owner only, and syncs it to the
    /// disk.
    void write(const QByteArray &bytes);
    /// Gives the file a second name, its own with "~" appended, replacing any file of that name; a copy where
    /// the file system has no hard links.
    void keepBackup() const;
    /// The same under a name with the date and time appended, which no other file has. Returns the path.
    QString keepDated() const;
    /// Renames what write() has written over the file.
    void commit();
    /// Syncs the folder, so that the rename reaches the disk.
    void syncFolder() const;

private:
    /// False, with errno set, where it fails.
    bool keepAs(const QByteArray &path) const;

    /// In the file system's encoding, links followed.
    QByteArray target_;
    QByteArray temporary_;
    /// The temporary file, locked so that removeStrays() leaves it. -1 for none.
    int open_ = -1;
};
