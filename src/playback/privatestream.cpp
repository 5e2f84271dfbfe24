#include "playback/privatestream.h"

#include "directory/address.h"
#include "directory/leadinginteger.h"
#include "model/radiomodel.h"
#include "model/rvobject.h"

#include <array>

namespace {
/// By the number that is stored for each; the first is the built-in one.
constexpr std::array agents{
    "Mozilla/5.0 (Macintosh; Intel Mac OS X 10_9_3) Plumtide/100.0.0 Version/1.0.0",
    "Mozilla/5.0 (Macintosh; Intel Mac OS X 10_9_3) AppleWebKit/537.75.14 (KHTML, like Gecko) Version/7.0.3 "
    "Safari/7046A194A",
    "Mozilla/5.0 (Windows NT 6.3; rv:36.0) Gecko/20100101 Firefox/36.0",
};
constexpr qint64 highestPort = 65535;

/// A choice is a number of 32 bits, however it is stored: of a longer one the lower bits count.
qint32 agentChoice(const QVariant &stored)
{
    return stored.isValid() ? static_cast<qint32>(leadingInteger(stored.toString())) : 0;
}
} // namespace

QUrl privateStreamUrl(const RadioModel &model)
{
    const QString mountpoint = model.text(RadioField::mountpoint);
    const QString scheme = model.text(RadioField::radioscheme);
    const qint64 port = leadingInteger(model.text(RadioField::port));
    QUrl url = urlFromAddress(model.text(RadioField::url) + mountpoint);
    // To QUrl -1 is no port, and the default one takes its place.
    if (!url.isValid() || port < 0 || port > highestPort) {
        return {};
    }
    url.setScheme(scheme.isNull() ? QStringLiteral("http") : scheme);
    url.setPath(mountpoint, QUrl::DecodedMode);
    url.setPort(static_cast<int>(port));
    return url;
}

HttpHeaders privateStreamHeaders(const RadioModel &model, const QVariant &storedUserAgent)
{
    HttpHeaders headers;
    const qint32 choice = agentChoice(storedUserAgent);
    if (choice >= 0 && choice < static_cast<qint32>(agents.size())) {
        headers.emplaceBack("User-Agent", agents[static_cast<std::size_t>(choice)]);
    }
    headers.emplaceBack("Authorization",
                        RVObject::standardBasicAuthWithUsername(model.text(RadioField::username),
                                                                model.text(RadioField::password))
                            .toLatin1());
    return headers;
}
