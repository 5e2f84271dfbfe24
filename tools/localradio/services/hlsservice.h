#pragma once

#include "localradio/faults/hlsplaylist.h"
#include "localradio/http/ports.h"
#include "localradio/http/requesttarget.h"
#include "localradio/sound/kinds.h"

#include <QElapsedTimer>

#include <map>
#include <optional>

namespace localradio {

struct Answer;
class HttpConnection;
class SoundLibrary;

/// Live sound as HLS (RFC 8216) at "/hls/", and the same at "/private/hls/": "master.m3u8", "VARIANT.m3u8"
/// and what these name, with what the query orders. Who may hear the private ones is not decided here.
class HlsService
{
public:
    /// `library` must outlive the service. `ports` are where redirects and segments may lead.
    HlsService(SoundLibrary &library, const Ports &ports);

    /// Answers the request of `connection` for `target`. False, and nothing is answered, if it is for
    /// anything else. Throws BadParameter.
    bool serve(HttpConnection &connection, const RequestTarget &target);

private:
    std::optional<Answer> answerInstead(const HttpConnection &connection, const RequestTarget &target);
    std::optional<Answer> answerTo(const HttpConnection &connection, const RequestTarget &target,
                                   const QString &below, const HlsOrder &order);
    QByteArray fileOf(const HlsOrder &order, const Kind &kind, const QString &name);
    QByteArray segment(const HlsOrder &order, const Kind &kind, qint64 number);
    qint64 newestFor(const HlsOrder &order, const QByteArray &rawTarget);

    SoundLibrary &library_;
    Ports ports_;
    QElapsedTimer onAir_;
    std::map<QByteArray, qint64> firstAsked_; // of lists that stall: when, in milliseconds on air
    std::map<QByteArray, qint64> faults_;     // of what fails a few times only: how often it has
};

} // namespace localradio
