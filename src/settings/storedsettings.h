#pragma once

#include <QSettings>
#include <QString>
#include <QVariant>

/// The three settings that shape how the program talks to the network, in plumtide/plumtide.conf below the
/// user's configuration folder. A setting that was never stored is absent; each reader has its own fall-back.
/// Lives on the main thread and reads the file once, when it is made.
class StoredSettings
{
public:
    StoredSettings();

    /// "timeout_value": how long a stream may take to start, in seconds. Invalid where absent.
    QVariant timeout() const;
    /// "query_value": the result limit of directory queries as text. Null where absent.
    QString queryLimit() const;
    /// "useragent_value": the index of the User-Agent choice. Invalid where absent.
    QVariant userAgent() const;

private:
    QSettings settings_;
};
