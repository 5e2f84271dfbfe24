#pragma once

#include <QSettings>
#include <QString>
#include <QVariant>

/// The three settings that shape how the program talks to the network, in plumtide/plumtide.conf below the
/// user's configuration folder, and nothing else. A setting that was never stored is absent; each reader has
/// its own default. Main thread.
///
/// What is stored is read from then on, also where the file cannot be written. What another program writes
/// into the file is read as well: each reading looks whether the file has changed, and only then opens it.
///
/// Whatever the file holds, reading is safe. A list, an empty value and a value that is no text count as
/// absent, as does everything in a file that cannot be read. Other texts are for the reader to interpret.
class StoredSettings
{
public:
    /// "timeout_value": how long a stream may take to start, in seconds. Invalid where absent. The reader
    /// takes the leading integer of a text, 0 where there is none, and brings it into its own range.
    QVariant timeout() const;
    /// "query_value": the result limit of directory queries as text: an integer of 64 bits in plain digits.
    /// Null where absent, and for any other text, which has no place in an address.
    QString queryLimit() const;
    /// "useragent_value": the index of the User-Agent choice. Invalid where absent. It may be beyond the
    /// choices, or negative: the window stores -1 where none is selected.
    QVariant userAgent() const;

    void setTimeout(qint64 seconds);
    void setQueryLimit(qint64 stations);
    void setUserAgent(int index);

    /// Writes what has been stored into the file, at once. Where that fails, a line in the log says so.
    void synchronize();

private:
    /// The file as it is now. QSettings objects share what they have read, and a new one checks the file for
    /// changes. Each has its own status, whereas an older one keeps that of its first error.
    class File : public QSettings
    {
    public:
        File();
    };

    /// Invalid where that is no text that a number could be read from.
    static QVariant stored(const QString &key);

    /// Keeps in memory what the file says, and what could not be written into it.
    File settings_;
};
