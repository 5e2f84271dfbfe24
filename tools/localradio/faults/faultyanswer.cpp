#include "localradio/faults/faultyanswer.h"

#include "localradio/http/basiclock.h"
#include "localradio/http/parameters.h"

#include <QStringEncoder>

#include <map>

namespace localradio {

namespace {

/// What an answer is made from.
struct Order
{
    RequestTarget target; ///< its one parameter is the fault, with its value
    QByteArray station;   ///< the id of the station that plays

    /// The value of the fault `name`, or `usual` where it has none.
    qint64 number(QLatin1StringView name, qint64 usual, qint64 most) const
    {
        return target.parameter(name).isEmpty() ? usual : *wholeNumber(target, name, 0, most);
    }
};

constexpr char declaration[] = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
constexpr char listBegin[] = "<stationlist><tunein base=\"/sbin/tunein-station.pls\"/>\n";
constexpr char listEnd[] = "</stationlist>\n";
constexpr qint64 mostBytes = 1'000'000'000;

constexpr char loginPage[] = R"(<!DOCTYPE html>
<html><head><meta charset="utf-8"><title>Welcome to the guest network</title></head>
<body><form action="/login" method="post"><p>Please log in.<br>
<input name="room" required> <button>Go</button></form></body></html>
)";

constexpr char entities[] = R"(<!DOCTYPE stationlist [<!ENTITY a0 "laughter ">
<!ENTITY a1 "&a0;&a0;&a0;&a0;&a0;&a0;&a0;&a0;&a0;&a0;"><!ENTITY a2 "&a1;&a1;&a1;&a1;&a1;&a1;&a1;&a1;&a1;&a1;">
<!ENTITY a3 "&a2;&a2;&a2;&a2;&a2;&a2;&a2;&a2;&a2;&a2;"><!ENTITY a4 "&a3;&a3;&a3;&a3;&a3;&a3;&a3;&a3;&a3;&a3;">
<!ENTITY a5 "&a4;&a4;&a4;&a4;&a4;&a4;&a4;&a4;&a4;&a4;"><!ENTITY a6 "&a5;&a5;&a5;&a5;&a5;&a5;&a5;&a5;&a5;&a5;">
<!ENTITY a7 "&a6;&a6;&a6;&a6;&a6;&a6;&a6;&a6;&a6;&a6;"><!ENTITY a8 "&a7;&a7;&a7;&a7;&a7;&a7;&a7;&a7;&a7;&a7;">
]>
)";

QByteArray headWith(const QByteArray &headers, const QByteArray &contentType = "text/xml; charset=utf-8")
{
    return "HTTP/1.1 200 OK\r\nServer: localradio\r\nContent-Type: " + contentType +
           "\r\nConnection: close\r\n" + headers + "\r\n";
}

QByteArray lengthHeader(qsizetype bytes)
{
    return "Content-Length: " + QByteArray::number(bytes) + "\r\n";
}

/// `name` is UTF-8 and no markup yet.
QByteArray station(const Order &order, const QByteArray &name,
                   const QByteArray &numbers = "br=\"128\" lc=\"9\"")
{
    QByteArray escaped = name;
    escaped.replace('&', "&amp;").replace('<', "&lt;").replace('"', "&quot;").replace('\n', "&#10;");
    return "<station name=\"" + escaped + "\" mt=\"audio/mpeg\" id=\"" + order.station + "\" " + numbers +
           " genre=\"Faults\" ct=\"" + escaped + "\"/>\n";
}

QByteArray list(const QByteArray &stations)
{
    return declaration + (listBegin + stations) + listEnd;
}

QByteArray healthyList(const Order &order)
{
    QByteArray stations;
    for (const char *name : {"First", "Second", "Third"}) {
        stations += station(order, name);
    }
    return list(stations);
}

FaultyAnswer whole(const QByteArray &body)
{
    return {200, headWith(lengthHeader(body.size())), {body}, {}};
}

/// Its length is not stated.
FaultyAnswer streamed(const LongText &body, const QByteArray &headers = {})
{
    return {200, headWith(headers), body, {}};
}

FaultyAnswer cut(Delivery::End end, qint64 afterBytes, const QByteArray &head = {},
                 const QByteArray &body = {})
{
    FaultyAnswer answer{200, head, {body}, {}};
    answer.delivery.cut = Delivery::Cut{end, afterBytes};
    return answer;
}

FaultyAnswer dripping(FaultyAnswer answer, qint64 bytesPerSecond)
{
    answer.delivery.bytesPerSecond = bytesPerSecond;
    return answer;
}

FaultyAnswer endlessHeaders()
{
    // Each with another name: a client may join headers of the same name.
    const auto header = [](qint64 number) { return "X-" + QByteArray::number(number) + ": endless\r\n"; };
    return {200, "HTTP/1.1 200 OK\r\n", {{}, header, LongText::endless}, {}};
}

FaultyAnswer endlessBody(const Order &order)
{
    return streamed({declaration + QByteArray(listBegin),
                     [line = station(order, "Endless")](qint64) { return line; }, LongText::endless});
}

/// A gzip file of one deflate block, each piece of which inflates to 2064 equal letters. Its checksum is
/// wrong, which a client notices only after it has inflated everything.
FaultyAnswer bomb(const Order &order)
{
    constexpr qint64 pieceBytes = 2064;
    const qint64 bytes = order.number(QLatin1StringView("bomb"), 300'000'000, mostBytes);
    return streamed({QByteArray::fromHex("1f8b0800000000000003ab1805"),
                     [piece = QByteArray::fromHex("a360148c8251300a46c1281805")](qint64) { return piece; },
                     bytes / pieceBytes, QByteArray(9, '\0')},
                    "Content-Encoding: gzip\r\n");
}

FaultyAnswer status(const Order &order)
{
    const auto status = wholeNumber(order.target, QLatin1StringView("status"), 200, 599);
    if (!status) {
        throw BadParameter("status must be given");
    }
    const Answer answer = *status == 401 ? BasicLock::challenge() : Answer::plain(static_cast<int>(*status));
    return {answer.status, answer.head(), {answer.body}, {}};
}

FaultyAnswer longAttribute(const Order &order)
{
    constexpr qint64 pieceBytes = 10'000;
    const qint64 bytes = order.number(QLatin1StringView("long-attribute"), 100'000'000, mostBytes);
    return streamed({QByteArray(listBegin) + "<station name=\"" + QByteArray(bytes % pieceBytes, 'a'),
                     [](qint64) { return QByteArray(pieceBytes, 'a'); }, bytes / pieceBytes,
                     QByteArray("\"/>") + listEnd});
}

FaultyAnswer attributes(const Order &order)
{
    return streamed({QByteArray(listBegin) + "<station",
                     [](qint64 number) { return " a" + QByteArray::number(number) + "=\"\""; },
                     order.number(QLatin1StringView("attributes"), 1'000'000, mostBytes),
                     QByteArray("/>") + listEnd});
}

FaultyAnswer depth(const Order &order)
{
    const qint64 depth = order.number(QLatin1StringView("depth"), 100'000, mostBytes);
    // As many end tags as start tags.
    return streamed({listBegin,
                     [depth](qint64 number) { return QByteArray(number < depth ? "<a>" : "</a>"); },
                     2 * depth, listEnd});
}

/// A list that declares the charset, encoded in it where it is one of these, else in UTF-8.
FaultyAnswer charset(const Order &order)
{
    static const std::map<QByteArray, QByteArray> names{
        {"iso-8859-1", "Caf\xe9"},
        {"windows-1252", "Caf\xe9 \x96 \x80"},
        {"shift_jis", "\x83\x89\x83\x57\x83\x49"},
    };
    const QByteArray charset =
        headerText(order.target, QLatin1StringView("charset")).value_or("iso-8859-1").toLower();
    const auto name = names.find(charset);
    QByteArray text = list(station(order, name == names.end() ? "Caf\xc3\xa9" : name->second));
    text.replace("UTF-8", charset);
    if (charset == "utf-16") {
        text = QStringEncoder(QStringEncoder::Utf16, QStringEncoder::Flag::WriteBom)(QString::fromUtf8(text));
    }
    return {200, headWith(lengthHeader(text.size()), "text/xml; charset=" + charset), {text}, {}};
}

FaultyAnswer numbers(const Order &order)
{
    QByteArray stations;
    for (const char *number : {"99999999999999999999", "-99999999999999999999", "2147483648", "-1", "",
                               "many", "0x80", "64k", "1e9", "\xd9\xa1\xd9\xa2\xd9\xa8"}) {
        QByteArray line = station(order, number, QByteArray("br=\"N\" lc=\"N\"").replace("N", number));
        stations += line.replace("id=\"" + order.station, QByteArray("id=\"") + number);
    }
    return whole(list(stations + station(order, "Healthy")));
}

FaultyAnswer htmlNames(const Order &order)
{
    QByteArray tables("Tables");
    for (int depth = 0; depth < 200; ++depth) {
        tables = "<table width=9999><tr><td>" + tables + "</td></tr></table>";
    }
    return whole(list(station(order, "<b>Bold</b> <img src=\"file:///etc/passwd\" width=\"9999\">&lt;") +
                      station(order, tables) +
                      station(order, "<a href=\"http://127.0.0.1/\">Link</a><br><br>\nnext")));
}

FaultyAnswer bidi(const Order &order)
{
    return whole(
        list(station(order, "Override \xe2\x80\xae"
                            "dlrow\xe2\x80\xac, isolate \xe2\x81\xa7sdrawkcab\xe2\x81\xa9") +
             station(order, "Controls \xc2\x9b\x33\x31m\x7f\tand\nlines\xe2\x80\xa8more\xc2\x85last") +
             station(order, "Zero\xe2\x80\x8bwidth\xef\xbb\xbf, never closed \xe2\x80\xaa\xe2\x80\xab")));
}

/// A well-formed list but for one byte sequence in a name.
FaultyAnswer listWith(const Order &order, const QByteArray &bytes)
{
    return whole(healthyList(order).replace("Second", bytes));
}

using Maker = FaultyAnswer (*)(const Order &);

const std::map<QString, Maker> &makers()
{
    using End = Delivery::End;
    static const std::map<QString, Maker> makers{
        {QStringLiteral("silent"), [](const Order &) { return cut(End::Stall, 0); }},
        {QStringLiteral("closed"), [](const Order &) { return cut(End::Close, 0); }},
        {QStringLiteral("empty"), [](const Order &) { return whole({}); }},
        {QStringLiteral("header-drip"), [](const Order &) { return dripping(endlessHeaders(), 1); }},
        {QStringLiteral("body-drip"), [](const Order &order) { return dripping(endlessBody(order), 20); }},
        {QStringLiteral("endless-headers"), [](const Order &) { return endlessHeaders(); }},
        {QStringLiteral("endless-body"), endlessBody},
        {QStringLiteral("bomb"), bomb},
        {QStringLiteral("deflate"),
         [](const Order &order) {
             constexpr qsizetype lengthBytes = 4; // Qt's own, in front of the format
             const QByteArray body = qCompress(healthyList(order)).sliced(lengthBytes);
             return streamed({body}, "Content-Encoding: deflate\r\n" + lengthHeader(body.size()));
         }},
        {QStringLiteral("cookie"), [](const Order &order) { return whole(healthyList(order)); }},
        {QStringLiteral("long-length"),
         [](const Order &order) {
             const QByteArray body = healthyList(order);
             return streamed({body}, lengthHeader(body.size() + 1000));
         }},
        {QStringLiteral("short-length"),
         [](const Order &order) {
             const QByteArray body = healthyList(order);
             return streamed({body}, lengthHeader(body.size() / 2));
         }},
        {QStringLiteral("bad-chunk"),
         [](const Order &order) {
             return streamed({"nonsense\r\n" + healthyList(order) + "\r\n0\r\n\r\n"},
                             "Transfer-Encoding: chunked\r\n");
         }},
        {QStringLiteral("reset"),
         [](const Order &order) {
             const QByteArray body = healthyList(order);
             return cut(End::Reset, body.size() / 2, headWith(lengthHeader(body.size())), body);
         }},
        {QStringLiteral("truncate"),
         [](const Order &order) {
             const QByteArray body = healthyList(order);
             return cut(End::Close, order.number(QLatin1StringView("truncate"), body.size() / 2, body.size()),
                        headWith({}), body);
         }},
        {QStringLiteral("status"), status},
        {QStringLiteral("portal"),
         [](const Order &) {
             return FaultyAnswer{200, headWith({}, "text/html; charset=utf-8"), {loginPage}, {}};
         }},
        {QStringLiteral("dtd"),
         [](const Order &order) {
             return whole(
                 healthyList(order).replace("<stationlist>", "<!DOCTYPE stationlist>\n<stationlist>"));
         }},
        {QStringLiteral("entities"),
         [](const Order &order) {
             return whole(entities + (listBegin + station(order, "NAME").replace("NAME", "&a8;")) + listEnd);
         }},
        {QStringLiteral("external-entity"),
         [](const Order &order) {
             return whole(healthyList(order).replace(
                 "<stationlist>",
                 "<!DOCTYPE stationlist [<!ENTITY x SYSTEM \"file:///etc/passwd\">]>\n<stationlist>&x;"));
         }},
        {QStringLiteral("long-attribute"), longAttribute},
        {QStringLiteral("attributes"), attributes},
        {QStringLiteral("depth"), depth},
        {QStringLiteral("nul"),
         [](const Order &order) { return listWith(order, QByteArray("Sec\0ond", 7)); }},
        {QStringLiteral("bad-utf8"), [](const Order &order) { return listWith(order, "Sec\xff\xc3ond"); }},
        {QStringLiteral("charset"), charset},
        {QStringLiteral("numbers"), numbers},
        {QStringLiteral("html-names"), htmlNames},
        {QStringLiteral("long-names"),
         [](const Order &order) {
             const qint64 bytes = order.number(QLatin1StringView("long-names"), 2'000'000, 10'000'000);
             return whole(list(station(order, QByteArray(bytes, 'n'))));
         }},
        {QStringLiteral("bidi"), bidi},
    };
    return makers;
}

} // namespace

FaultyAnswer FaultyAnswer::make(const QString &order, int station)
{
    const auto maker = makers().find(order.section(u'=', 0, 0));
    if (maker == makers().end()) {
        throw BadParameter("there is no such fault; localradio --help-faults lists them");
    }
    return maker->second(
        {RequestTarget('?' + order.toUtf8().toPercentEncoding("=")), QByteArray::number(station)});
}

} // namespace localradio
