#pragma once

#include "localradio/audiosource.h"
#include "localradio/icyweaver.h"

#include <QElapsedTimer>
#include <QObject>

#include <optional>

namespace localradio {

class HttpConnection;

/// One connection that hears a mount: first a burst, then audio at the pace at which it plays. A child of
/// its connection.
class Listener : public QObject
{
    Q_OBJECT

public:
    /// Audio waits here while that much waits in the connection.
    static constexpr qint64 maxUnsentBytes = qint64{256} * 1024;

    /// Sends `source`, which plays `bytesPerSecond`, `burstSeconds` ahead of its time; with titles if
    /// there is a `weaver`.
    Listener(HttpConnection &connection, std::unique_ptr<AudioSource> source, double bytesPerSecond,
             double burstSeconds, std::optional<IcyWeaver> weaver);

    /// Sends what is due by now. To be called several times a second.
    void pump();

private:
    HttpConnection &connection_;
    std::unique_ptr<AudioSource> source_;
    double bytesPerSecond_;
    double burstSeconds_;
    std::optional<IcyWeaver> weaver_;
    QElapsedTimer elapsed_;
    qint64 audioBytes_ = 0; // read from the source so far
};

} // namespace localradio
