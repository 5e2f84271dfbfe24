#pragma once

#include "localradio/sound/audiosource.h"
#include "localradio/sound/icyweaver.h"

#include <QElapsedTimer>
#include <QObject>

#include <limits>
#include <optional>

namespace localradio {

class StreamOutlet;

/// How fast a stream goes out.
struct Pace
{
    double bytesPerSecond = 0;
    double burstSeconds = 0;                               ///< so far ahead of its time
    qint64 untilByte = std::numeric_limits<qint64>::max(); ///< and then as fast as the client reads
};

/// One client that hears a stream, through an outlet whose child it is.
class Listener : public QObject
{
    Q_OBJECT

public:
    /// Sends `source` into `outlet`, which has begun: at `pace`, as fast as the client reads if there is
    /// none; with titles if there is a `weaver`.
    Listener(StreamOutlet &outlet, std::unique_ptr<AudioSource> source, std::optional<Pace> pace,
             std::optional<IcyWeaver> weaver);

    /// Sends what is due by now. To be called once at first, and with a pace several times a second.
    void pump();

private:
    StreamOutlet &outlet_;
    std::unique_ptr<AudioSource> source_;
    std::optional<Pace> pace_;
    std::optional<IcyWeaver> weaver_;
    QElapsedTimer elapsed_;
    qint64 audioBytes_ = 0; // read from the source so far
};

} // namespace localradio
