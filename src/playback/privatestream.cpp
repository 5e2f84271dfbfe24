#include "playback/privatestream.h"

#include "base/leadinginteger.h"
#include "base/rvobject.h"
#include "favourites/radiomodel.h"
#include "http/address.h"
#include "playback/useragents.h"

namespace {
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
    // The record has fields for these; in an address they would be shown as the name of the sound's source.
    url.setUserInfo({});
    return url;
}

HttpHeaders privateStreamHeaders(const RadioModel &model, const QVariant &storedUserAgent)
{
    HttpHeaders headers;
    const qint32 choice = agentChoice(storedUserAgent);
    if (choice >= 0 && choice < static_cast<qint32>(userAgents.size())) {
        const QLatin1StringView agent = userAgents[static_cast<std::size_t>(choice)];
        headers.emplaceBack("User-Agent", QByteArray(agent.data(), agent.size()));
    }
    headers.emplaceBack("Authorization",
                        RVObject::standardBasicAuthWithUsername(model.text(RadioField::username),
                                                                model.text(RadioField::password))
                            .toLatin1());
    return headers;
}
