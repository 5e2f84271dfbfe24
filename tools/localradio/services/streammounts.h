#pragma once

#include "localradio/catalogue/catalogue.h"
#include "localradio/http/ports.h"
#include "localradio/http/requesttarget.h"
#include "localradio/sound/loops.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include <array>

namespace localradio {

class HttpConnection;
class IcyWeaver;
class Listener;
struct IcyStyle;

/// The live streams of a catalogue's stations, at "/stream/ID" and "/private/ID" with anything after a
/// semicolon, and with the faults that the query asks for. Who may hear the private ones is not decided here.
class StreamMounts : public QObject
{
    Q_OBJECT

public:
    /// What the paths of streams begin with that are for some listeners only.
    static constexpr QLatin1StringView privatePrefix{"/private/"};

    /// `catalogue` must outlive the mounts. New listeners get `burstSeconds` of audio at once. The loops
    /// are read from `loopsDirectory` when they are first heard. `ports` are where redirects may lead.
    StreamMounts(const Catalogue &catalogue, QString loopsDirectory, double burstSeconds,
                 const Ports &ports = {}, QObject *parent = nullptr);

    /// Answers the request of `connection` for `target` with a stream. False, and nothing is answered, if
    /// there is no such mount; a mount whose loop cannot be read answers with status 503. Throws BadParameter
    /// for a fault that makes no sense.
    bool serve(HttpConnection &connection, const RequestTarget &target);

    /// Where the build has put the loops.
    static QString defaultLoopsDirectory();

private:
    const Station *stationAt(const QString &path) const;
    IcyWeaver weaverFor(const Station &station, const IcyStyle &style, double bytesPerSecond) const;
    void attach(Listener *listener);
    QByteArray loopAudio(int index);

    const Catalogue &catalogue_;
    QString loopsDirectory_;
    double burstSeconds_;
    Ports ports_;
    std::array<QByteArray, loopCount> loops_;
    QElapsedTimer onAir_;
    QTimer pump_; // runs while somebody listens
    int listeners_ = 0;
};

} // namespace localradio
