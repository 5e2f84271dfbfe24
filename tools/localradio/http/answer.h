#pragma once

#include <QByteArray>

namespace localradio {

/// A whole answer to an HTTP request.
struct Answer
{
    int status = 200;
    QByteArray contentType = "text/plain; charset=utf-8";
    QByteArray body;
    QByteArray headers = {}; ///< further header lines, each with its CR LF

    /// The status line and all headers, up to and with the blank line.
    QByteArray head() const;

    /// An answer whose body is one line of plain text; an empty `line` stands for the status in words.
    static Answer plain(int status, const QByteArray &line = {});
};

} // namespace localradio
