#include "localradio/services/doorkeeper.h"

#include "localradio/http/httpconnection.h"
#include "localradio/http/parameters.h"

#include <QRandomGenerator>

#include <array>

namespace localradio {

namespace {

constexpr QLatin1StringView tokenName("token");
constexpr QLatin1StringView cookieName("cookie");
constexpr QLatin1StringView listenersName("listeners");
constexpr QLatin1StringView required("required");
constexpr QLatin1StringView demanded("demanded");
constexpr char ticketPrefix[] = "ticket=";

/// What has been given out and never came back.
constexpr qsizetype maxOpen = 10'000;

/// Something that nobody has, and that `given` holds from now on.
QString somethingNew(QSet<QString> &given)
{
    if (given.size() == maxOpen) {
        given.clear();
    }
    QString text = QString::number(QRandomGenerator::global()->generate64(), 36);
    given.insert(text);
    return text;
}

/// A redirect to the same address with another value of the parameter `name`, which is "required" there.
void sendOn(HttpConnection &connection, QLatin1StringView name, const QString &value,
            const QByteArray &headers = {})
{
    const QByteArray before = QByteArray(name.data(), name.size()) + "=";
    QByteArray target = connection.request().target;
    target.replace(before + QByteArray(required.data(), required.size()), before + value.toUtf8());
    Answer answer = Answer::plain(302);
    answer.headers = "Location: " + connection.origin() + target + "\r\n" + headers;
    connection.answer(answer);
}

} // namespace

Doorkeeper::Doorkeeper(QObject *parent)
    : QObject(parent)
{
    clock_.start();
}

bool Doorkeeper::stops(HttpConnection &connection, const RequestTarget &target)
{
    return stopsWithoutToken(connection, target) || stopsWithoutCookie(connection, target) ||
           stopsWithoutSeat(connection, target);
}

bool Doorkeeper::stopsWithoutToken(HttpConnection &connection, const RequestTarget &target)
{
    const QString token = target.parameter(tokenName);
    if (token.isNull() || tokens_.remove(token)) {
        return false;
    }
    if (token == required) {
        sendOn(connection, tokenName, somethingNew(tokens_));
    } else {
        connection.answer(Answer::plain(403));
    }
    return true;
}

bool Doorkeeper::stopsWithoutCookie(HttpConnection &connection, const RequestTarget &target)
{
    static constexpr std::array values{required, demanded};
    const auto wanted = choice(target, cookieName, values);
    if (!wanted) {
        return false;
    }
    if (values.at(*wanted) == required) {
        sendOn(connection, cookieName, demanded,
               "Set-Cookie: " + (ticketPrefix + somethingNew(cookies_).toUtf8()) + "; Path=/\r\n");
        return true;
    }
    for (const QByteArray &pair : connection.request().header("Cookie").split(';')) {
        const QByteArray brought = pair.trimmed();
        if (brought.startsWith(ticketPrefix) &&
            cookies_.contains(QString::fromUtf8(brought.mid(sizeof(ticketPrefix) - 1)))) {
            return false;
        }
    }
    connection.answer(Answer::plain(403));
    return true;
}

bool Doorkeeper::stopsWithoutSeat(HttpConnection &connection, const RequestTarget &target)
{
    static constexpr std::array one{QLatin1StringView("1")};
    if (!choice(target, listenersName, one)) {
        return false;
    }
    const auto busy = wholeNumber(target, QLatin1StringView("busy"), 400, 599).value_or(503);
    const double seconds = positiveNumber(target, QLatin1StringView("slot"), 3600).value_or(0);
    Seat &seat = seats_[target.path()];
    if (seat.taken || clock_.elapsed() < seat.freeAt) {
        connection.answer(Answer::plain(static_cast<int>(busy)));
        return true;
    }
    seat.taken = true;
    connect(&connection, &HttpConnection::closed, this, [this, &seat, seconds] {
        seat = {false, clock_.elapsed() + static_cast<qint64>(seconds * 1000)};
    });
    return false;
}

} // namespace localradio
