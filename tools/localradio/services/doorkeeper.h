#pragma once

#include "localradio/http/ports.h"
#include "localradio/http/requesttarget.h"

#include <QElapsedTimer>
#include <QObject>
#include <QSet>
#include <QString>

#include <map>

namespace localradio {

class HttpConnection;

/// Who gets in at any address that asks for it in its query: whoever brings a token that holds once, or the
/// cookie that a redirect has set, or comes when no other listener is there.
class Doorkeeper : public QObject
{
    Q_OBJECT

public:
    explicit Doorkeeper(QObject *parent = nullptr);

    /// Answers the request of `connection` for `target` if its way leads over a redirect first, or ends here.
    /// False if it may pass. Throws BadParameter.
    bool stops(HttpConnection &connection, const RequestTarget &target);

private:
    /// The one listener of an address.
    struct Seat
    {
        bool taken = false;
        qint64 freeAt = 0; ///< in milliseconds of the clock, after that listener has gone
    };

    bool stopsWithoutToken(HttpConnection &connection, const RequestTarget &target);
    bool stopsWithoutCookie(HttpConnection &connection, const RequestTarget &target);
    bool stopsWithoutSeat(HttpConnection &connection, const RequestTarget &target);

    QSet<QString> tokens_; // that have been given out and not been used
    QSet<QString> cookies_;
    std::map<QString, Seat> seats_; // by path
    QElapsedTimer clock_;
};

} // namespace localradio
