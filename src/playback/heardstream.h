#pragma once

#include <QLatin1StringView>
#include <QObject>
#include <QString>

/// What is known of the sound that is heard.
struct StreamInfo
{
    /// What plays now, as the station says it; empty where it says nothing.
    QString title;
    /// The sound's format by the name that people know it by. Empty while nothing plays, and then so is the
    /// rest.
    QString codec;
    /// In kbit/s, what the sound itself says before what its server says; 0 where neither does.
    int bitrate = 0;
    /// How much sound waits to be played, in whole seconds.
    int buffered = 0;
    /// Whether it comes over an encrypted connection from a server that could be any: its certificate could
    /// not be verified.
    bool isUnverified = false;

    bool isEmpty() const { return codec.isEmpty(); }
    bool operator==(const StreamInfo &) const = default;
};

/// What the listener hears, as the player that plays reports it. Main thread.
class HeardStream : public QObject
{
    Q_OBJECT

public:
    const StreamInfo &info() const { return info_; }
    /// Signals a real change only.
    void setInfo(const StreamInfo &info);

Q_SIGNALS:
    void changed(const StreamInfo &info);

private:
    StreamInfo info_;
};

/// The name that people know a sound format by, from the decoder's short names for it and for its profile,
/// which may be empty; capitals for one that has no better name.
QString codecName(QLatin1StringView codec, QLatin1StringView profile);
