#include "localradio/http/answer.h"

namespace localradio {

namespace {

QByteArray reasonFor(int status)
{
    switch (status) {
    case 200:
        return "OK";
    case 206:
        return "Partial Content";
    case 302:
        return "Found";
    case 400:
        return "Bad Request";
    case 401:
        return "Unauthorized";
    case 403:
        return "Forbidden";
    case 404:
        return "Not Found";
    case 405:
        return "Method Not Allowed";
    case 431:
        return "Request Header Fields Too Large";
    case 500:
        return "Internal Server Error";
    case 502:
        return "Bad Gateway";
    case 503:
        return "Service Unavailable";
    default:
        return "Status";
    }
}

} // namespace

QByteArray Answer::head() const
{
    return "HTTP/1.1 " + QByteArray::number(status) + ' ' + reasonFor(status) +
           "\r\nServer: localradio\r\nContent-Type: " + contentType +
           "\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\n" + headers +
           "Connection: close\r\n\r\n";
}

Answer Answer::plain(int status, const QByteArray &line)
{
    return {status, "text/plain; charset=utf-8", (line.isEmpty() ? reasonFor(status) : line) + '\n'};
}

} // namespace localradio
