#include "localradio/streamfaults.h"

#include "localradio/httpconnection.h"
#include "localradio/parameters.h"

#include <array>

namespace localradio {

namespace {

constexpr char webPage[] = R"(<!DOCTYPE html>
<html>
<head><title>Welcome</title></head>
<body><p>This is a web page where a stream should be.</p></body>
</html>
)";

QByteArray location(const QByteArray &redirect, const HttpConnection &connection, const Ports &ports)
{
    const QByteArray here = originOf(connection.port()).toUtf8();
    const QByteArray &target = connection.request().target;
    const QByteArray path = target.first(target.indexOf('?'));
    if (redirect == "same") {
        return here + path;
    }
    if (redirect == "port") {
        return originOf(ports.otherThan(connection.port())).toUtf8() + path;
    }
    if (redirect == "loop") {
        return here + target;
    }
    return redirect == "file" ? "file:///etc/passwd" : redirect;
}

} // namespace

StreamFaults StreamFaults::read(const RequestTarget &target)
{
    static constexpr std::array bodies{QLatin1StringView("endless"), QLatin1StringView("html"),
                                       QLatin1StringView("random"), QLatin1StringView("zeros")};
    StreamFaults faults;
    faults.status = wholeNumber(target, QLatin1StringView("status"), 100, 599);
    faults.redirect = headerText(target, QLatin1StringView("redirect"));
    faults.contentType = headerText(target, QLatin1StringView("type"));
    if (const auto index = choice(target, QLatin1StringView("body"), bodies)) {
        faults.body = std::array{Body::Endless, Body::Html, Body::Random, Body::Zeros}[*index];
    }
    faults.icy = IcyStyle::read(target);
    faults.delivery = Delivery::read(target);
    return faults;
}

std::optional<Answer> StreamFaults::answerInstead(const HttpConnection &connection, const Ports &ports) const
{
    Answer answer;
    if (status || redirect) {
        answer = Answer::plain(status.value_or(302));
        if (redirect) {
            answer.headers = "Location: " + location(*redirect, connection, ports) + "\r\n";
        }
    } else if (body == Body::Html) {
        answer = {200, "text/html; charset=utf-8", webPage};
    } else {
        return std::nullopt;
    }
    answer.contentType = contentType.value_or(answer.contentType);
    return answer;
}

} // namespace localradio
