#include "localradio/http/basiclock.h"

#include <algorithm>

namespace localradio {

BasicLock::BasicLock(const QByteArray &user, const QByteArray &password)
    : credentials_(user + ':' + password)
{
}

bool BasicLock::opensFor(const HttpRequest &request) const
{
    const QByteArray scheme = "Basic ";
    const QByteArray value = request.header("Authorization");
    if (scheme.compare(value.first(std::min(value.size(), scheme.size())), Qt::CaseInsensitive) != 0) {
        return false;
    }
    const auto decoded =
        QByteArray::fromBase64Encoding(value.sliced(scheme.size()), QByteArray::AbortOnBase64DecodingErrors);
    return decoded && *decoded == credentials_;
}

Answer BasicLock::challenge()
{
    Answer answer = Answer::plain(401);
    answer.headers = "WWW-Authenticate: Basic realm=\"Private stations\"\r\n";
    return answer;
}

} // namespace localradio
