#pragma once

#include "localradio/catalogue/catalogue.h"
#include "localradio/http/ports.h"
#include "localradio/http/requesttarget.h"
#include "localradio/services/programme.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include <optional>

namespace localradio {

class HttpConnection;
class IcyWeaver;
class Listener;
class SoundLibrary;
struct IcyStyle;
struct Kind;

/// The live streams of a catalogue's stations, at "/stream/ID" and "/private/ID" with anything after a
/// semicolon, and of every kind of sound, at "/kind/NAME" and "/private/kind/NAME"; with the faults that the
/// query asks for. Who may hear the private ones is not decided here.
class StreamMounts : public QObject
{
    Q_OBJECT

public:
    /// What the paths of streams begin with that are for some listeners only.
    static constexpr QLatin1StringView privatePrefix{"/private/"};

    static constexpr QLatin1StringView kindPrefix{"/kind/"};

    /// `catalogue` and `library` must outlive the mounts. New listeners get `burstSeconds` of audio at once.
    /// `ports` are where redirects may lead.
    StreamMounts(const Catalogue &catalogue, SoundLibrary &library, double burstSeconds,
                 const Ports &ports = {}, QObject *parent = nullptr);

    /// Answers the request of `connection` for `target` with a stream. False, and nothing is answered, if
    /// there is no such mount; a mount whose sound cannot be read answers with status 503. Throws
    /// BadParameter for a fault that makes no sense.
    bool serve(HttpConnection &connection, const RequestTarget &target);

private:
    std::optional<Programme> programmeAt(const QString &path);
    Programme programmeOf(const Station &station);
    Programme programmeOf(const Kind &kind);
    IcyWeaver weaverFor(const Programme &programme, const IcyStyle &style) const;
    void attach(Listener *listener);

    const Catalogue &catalogue_;
    SoundLibrary &library_;
    double burstSeconds_;
    Ports ports_;
    QElapsedTimer onAir_;
    QTimer pump_; // runs while somebody listens
    int listeners_ = 0;
};

} // namespace localradio
