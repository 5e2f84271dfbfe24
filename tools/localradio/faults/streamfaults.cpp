#include "localradio/faults/streamfaults.h"

#include "localradio/http/httpconnection.h"
#include "localradio/http/parameters.h"
#include "localradio/http/redirect.h"

#include <array>
#include <vector>

namespace localradio {

namespace {

constexpr char webPage[] = R"(<!DOCTYPE html>
<html>
<head><title>Welcome</title></head>
<body><p>This is a web page where a stream should be.</p></body>
</html>
)";

} // namespace

StreamFaults StreamFaults::read(const RequestTarget &target)
{
    std::vector bodies{QLatin1StringView("endless"), QLatin1StringView("html"), QLatin1StringView("random"),
                       QLatin1StringView("zeros")};
    for (const HostileSound &hostile : HostileSound::all()) {
        bodies.push_back(hostile.name);
    }
    StreamFaults faults;
    faults.status = wholeNumber(target, QLatin1StringView("status"), 100, 599);
    faults.redirect = headerText(target, QLatin1StringView("redirect"));
    faults.contentType = headerText(target, QLatin1StringView("type"));
    faults.header = headerText(target, QLatin1StringView("header"));
    faults.chunkSize = headerText(target, QLatin1StringView("chunk"));
    faults.tag = LeadingTag::read(target);
    if (const auto index = choice(target, QLatin1StringView("body"), bodies)) {
        constexpr std::array plain{Body::Endless, Body::Html, Body::Random, Body::Zeros};
        faults.body = *index < plain.size() ? plain.at(*index) : Body::Hostile;
        faults.hostile = *index < plain.size() ? nullptr : &HostileSound::all().at(*index - plain.size());
    }
    faults.afterSeconds = positiveNumber(target, QLatin1StringView("after"), 3600).value_or(0);
    faults.paced = flag(target, QLatin1StringView("paced"));
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
            const QByteArray &target = connection.request().target;
            const QByteArray path = target.first(target.indexOf('?'));
            answer.headers = "Location: " + redirectLocation(*redirect, connection, ports, path) + "\r\n";
        }
    } else if (body == Body::Html) {
        answer = {200, "text/html; charset=utf-8", webPage};
    } else {
        return std::nullopt;
    }
    if (header) {
        answer.headers += *header + "\r\n";
    }
    answer.contentType = contentType.value_or(answer.contentType);
    return answer;
}

} // namespace localradio
