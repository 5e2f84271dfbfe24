#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

/// What stands in the regular file under `path`, or behind the links there; nothing where there is no such
/// file. Never waits for a pipe or a device. Raises Exception where something else stands there, where it
/// cannot be read, and where it is longer than `limit` bytes. Any thread.
std::optional<QByteArray> readRegularFile(const QString &path, qsizetype limit);

/// The replacement of a file by new contents, at once: whenever the program is stopped, the file holds the
/// old contents or the new ones. One object for one replacement; any thread.
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
    /// Removes what write() has made and commit() has not put in place.
    ~FileReplacement();

    /// The path of the file that is replaced, as the system takes it: what the links at `path` lead to,
    /// whether it is there or not.
    static QByteArray behindLinks(const QString &path);

    /// Removes what earlier replacements of the file at `path` had to leave when the program was killed; what
    /// another program is writing just now stays.
    static void removeStrays(const QString &path);

    /// Whether there is a file, as yet.
    bool isThere() const;
    /// Whether the file holds `bytes` already, for nobody but its owner to read, and safely on the disk.
    bool holds(const QByteArray &bytes) const;

    /// Writes `bytes` beside the file, readable by its owner only, and brings them to the disk.
    void write(const QByteArray &bytes);
    /// Gives the file a second name, its own with a "~" behind, in place of what has that name; where the
    /// file system has no links, a copy.
    void keepBackup() const;
    /// The same under a name with the date and time behind, which no other file has. Returns the path.
    QString keepDated() const;
    /// Puts what write() has written in place of the file.
    void commit();
    /// Brings the file's new place in its folder to the disk.
    void syncFolder() const;

private:
    /// False, with errno set, where it fails.
    bool keepAs(const QByteArray &path) const;

    /// As the system takes it, links followed.
    QByteArray target_;
    QByteArray temporary_;
    /// The temporary file; locked, so that it is not taken for one that was left behind. -1 for none.
    int open_ = -1;
};
