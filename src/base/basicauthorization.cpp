#include "base/basicauthorization.h"

#include "base/base64.h"

#include <algorithm>

QString basicAuthorization(const QString &username, const QString &password)
{
    const QString credentials = username + QLatin1Char(':') + password;
    const bool ascii =
        std::all_of(credentials.begin(), credentials.end(), [](QChar c) { return c.unicode() < 128; });
    return QLatin1StringView("Basic ") + (ascii ? Base64::encode(credentials.toLatin1()) : QString());
}
