#pragma once

#include "localradio/http/answer.h"
#include "localradio/http/httprequest.h"

namespace localradio {

/// HTTP Basic authentication of one user.
class BasicLock
{
public:
    /// `user`, which must not contain a colon, and `password` are UTF-8.
    BasicLock(const QByteArray &user, const QByteArray &password);

    /// Whether `request` brings exactly this user and password.
    bool opensFor(const HttpRequest &request) const;

    /// Status 401, which asks for them.
    static Answer challenge();

private:
    QByteArray credentials_; // user, colon, password
};

} // namespace localradio
