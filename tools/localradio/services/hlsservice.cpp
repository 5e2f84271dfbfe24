#include "localradio/services/hlsservice.h"

#include "localradio/http/httpconnection.h"
#include "localradio/http/parameters.h"
#include "localradio/http/redirect.h"
#include "localradio/http/streamoutlet.h"
#include "localradio/services/listener.h"
#include "localradio/sound/byteloop.h"
#include "localradio/sound/segments.h"
#include "localradio/sound/soundlibrary.h"

#include <QRegularExpression>

#include <algorithm>
#include <array>
#include <cmath>

namespace localradio {

namespace {

constexpr QLatin1StringView prefixes[] = {QLatin1StringView("/hls/"), QLatin1StringView("/private/hls/")};
constexpr char playlistType[] = "application/vnd.apple.mpegurl";

/// What may be remembered of addresses.
constexpr std::size_t maxRemembered = 10'000;

/// What `memory` has under `address`; `initial`, if that is new.
qint64 &remembered(std::map<QByteArray, qint64> &memory, const QByteArray &address, qint64 initial)
{
    if (memory.size() > maxRemembered) {
        memory.clear();
    }
    return memory.try_emplace(address, initial).first->second;
}

/// The number in a file's name, such as "123.ts" or "turn-7.ts".
std::optional<qint64> numberIn(const QString &name, const QString &before)
{
    static const QRegularExpression form(QStringLiteral("^([a-z-]*)(\\d{1,9})(\\.[a-z0-9]+)?$"));
    const auto match = form.match(name);
    return match.hasMatch() && match.captured(1) == before ? std::optional(match.captured(2).toLongLong())
                                                           : std::nullopt;
}

const Kind *kindOf(const QString &variant, HlsOrder::Form form)
{
    static constexpr std::array suffixes{"-ts", "-fmp4", "-aac"};
    const Kind *kind = findKind(variant.toStdString() + suffixes[static_cast<std::size_t>(form)]);
    return kind != nullptr && !kind->isStream ? kind : nullptr;
}

/// The form that the name of a segment tells.
HlsOrder::Form formOf(const QString &file)
{
    return file.endsWith(u".aac")                             ? HlsOrder::Form::Frames
           : file.endsWith(u".m4s") || file.endsWith(u".mp4") ? HlsOrder::Form::Fragments
                                                              : HlsOrder::Form::TransportStream;
}

/// The part of `whole` that the header "Range" asks for, if it is one.
Answer partOf(const Answer &whole, const QByteArray &range)
{
    static const QRegularExpression form(QStringLiteral("^bytes=(\\d{1,12})-(\\d{0,12})$"));
    const auto match = form.match(QString::fromLatin1(range));
    const qint64 size = whole.body.size();
    const qint64 first = match.captured(1).toLongLong();
    if (!match.hasMatch() || first >= size) {
        return whole;
    }
    const qint64 last =
        match.captured(2).isEmpty() ? size - 1 : std::min(size - 1, match.captured(2).toLongLong());
    Answer part = whole;
    part.status = 206;
    part.body = whole.body.mid(first, last - first + 1);
    part.headers += "Content-Range: bytes " + QByteArray::number(first) + '-' + QByteArray::number(last) +
                    '/' + QByteArray::number(size) + "\r\n";
    return part;
}

} // namespace

HlsService::HlsService(SoundLibrary &library, const Ports &ports)
    : library_(library)
    , ports_(ports)
{
    onAir_.start();
}

bool HlsService::serve(HttpConnection &connection, const RequestTarget &target)
{
    const auto *const used = std::ranges::find_if(
        prefixes, [&target](QLatin1StringView begin) { return target.path().startsWith(begin); });
    if (used == std::end(prefixes)) {
        return false;
    }
    const HlsOrder order = HlsOrder::read(target);
    auto *outlet = new StreamOutlet(connection, Delivery::read(target));
    if (const auto fault = answerInstead(connection, target)) {
        outlet->answer(*fault);
        return true;
    }
    const auto answer = answerTo(connection, target, target.path().sliced(used->size()), order);
    if (!answer) {
        outlet->answer(Answer::plain(404));
    } else if (order.endless) {
        outlet->begin(200, "HTTP/1.1 200 OK\r\nServer: localradio\r\nContent-Type: " + answer->contentType +
                               "\r\nConnection: close\r\n\r\n");
        outlet->send(answer->body);
        auto *listener =
            new Listener(*outlet, std::make_unique<ByteLoop>('#' + QByteArray(78, '-') + '\n', 0), {}, {});
        listener->pump();
    } else {
        outlet->answer(partOf(*answer, connection.request().header("Range")));
    }
    return true;
}

/// A status or a redirect, always or as long as the address has not had its share of them.
std::optional<Answer> HlsService::answerInstead(const HttpConnection &connection, const RequestTarget &target)
{
    const auto status = wholeNumber(target, QLatin1StringView("status"), 100, 599);
    const auto redirect = headerText(target, QLatin1StringView("redirect"));
    const auto times = wholeNumber(target, QLatin1StringView("times"), 1, 1000);
    const auto every = wholeNumber(target, QLatin1StringView("every"), 1, 1000).value_or(1);
    const auto number = numberIn(target.path().section(u'/', -1), {}).value_or(0);
    if ((!status && !redirect) || number % every != 0) {
        return std::nullopt;
    }
    const QByteArray &raw = connection.request().target;
    if (times) {
        qint64 &count = remembered(faults_, raw, 0);
        if (count == *times) {
            return std::nullopt;
        }
        ++count;
    }
    Answer answer = Answer::plain(static_cast<int>(status.value_or(302)));
    if (redirect) {
        static const QRegularExpression parameter(QStringLiteral("redirect=[^&]*&?|[?&]redirect=[^&]*$"));
        const QByteArray healthy = QString::fromLatin1(raw).remove(parameter).toLatin1();
        answer.headers = "Location: " + redirectLocation(*redirect, connection, ports_, healthy) + "\r\n";
    }
    return answer;
}

std::optional<Answer> HlsService::answerTo(const HttpConnection &connection, const RequestTarget &target,
                                           const QString &below, const HlsOrder &order)
{
    const QByteArray &raw = connection.request().target;
    const QByteArray root = target.path().chopped(below.size()).toUtf8();
    const HlsPlace place{target, raw, root, connection.origin(),
                         originOf(ports_.otherThan(connection.port())).toUtf8()};
    const QString first = below.section(u'/', 0, 0);
    const QString rest = below.section(u'/', 1);
    if (below == u"master.m3u8") {
        return Answer{200, playlistType, masterPlaylist(order, place)};
    }
    if (first == u"key") {
        const auto number = numberIn(rest, {});
        return number ? std::optional(Answer{200, "application/octet-stream", hlsKey(*number)})
                      : std::nullopt;
    }
    if (below.endsWith(u".m3u8")) {
        const QString variant = below.chopped(5);
        const Kind *const kind = kindOf(variant, order.form);
        if (kind == nullptr) {
            return std::nullopt;
        }
        const auto sizeOf = [&](qint64 number) { return segment(order, *kind, number).size(); };
        return Answer{200, playlistType,
                      mediaPlaylist(order, place, variant.toUtf8(), newestFor(order, raw), sizeOf)};
    }
    const Kind *const kind = kindOf(first, formOf(rest));
    const QByteArray file = kind == nullptr ? QByteArray() : fileOf(order, *kind, rest);
    return file.isEmpty() ? std::nullopt : std::optional(Answer{200, kind->mediaType, file});
}

QByteArray HlsService::fileOf(const HlsOrder &order, const Kind &kind, const QString &name)
{
    if (name == u"init.mp4") {
        const auto turn = library_.turn(kind);
        return turn ? turn->header : QByteArray();
    }
    if (const auto turn = numberIn(name, QStringLiteral("turn-"))) {
        QByteArray file;
        for (qint64 part = 0; part < turnSegments; ++part) {
            file += segment(order, kind, *turn * turnSegments + part);
        }
        return file;
    }
    const auto number = numberIn(name, {});
    return number ? segment(order, kind, *number) : QByteArray();
}

QByteArray HlsService::segment(const HlsOrder &order, const Kind &kind, qint64 number)
{
    const auto turn = library_.turn(kind);
    if (!turn || turn->units.size() != kindUnits) {
        return {};
    }
    const QByteArray sound =
        segmentOf(*turn, kind.container, order.discontinuity ? number % turnSegments : number);
    return order.key == HlsOrder::Key::None
               ? sound
               : encrypted(sound, hlsKey(order.keyOf(number)), hlsVector(order, number));
}

qint64 HlsService::newestFor(const HlsOrder &order, const QByteArray &rawTarget)
{
    qint64 milliseconds = onAir_.elapsed();
    if (order.stall) {
        const qint64 asked = remembered(firstAsked_, rawTarget, milliseconds);
        milliseconds = std::min(milliseconds, asked + std::llround(*order.stall * 1000));
    }
    return hlsFirstNewest + static_cast<qint64>(static_cast<double>(milliseconds) / 1000 / segmentSeconds);
}

} // namespace localradio
