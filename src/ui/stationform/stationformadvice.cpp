#include "ui/stationform/stationformadvice.h"

#include "http/address.h"

#include <algorithm>

namespace {
using Hint = StationFormAdvice::Hint;

constexpr QLatin1StringView https{"https"};

bool isPort(const QString &text)
{
    const auto isDigit = [](QChar character) { return character >= u'0' && character <= u'9'; };
    return std::all_of(text.cbegin(), text.cend(), isDigit) && text.toUShort() != 0;
}

bool isBeingBegun(const QString &address)
{
    return QLatin1StringView("http://").startsWith(address) ||
           QLatin1StringView("https://").startsWith(address);
}

bool hasPath(const QUrl &url)
{
    return url.path().size() > 1;
}

/// Whether appending to `query` leaves its values unchanged.
bool isOpenEnded(const QString &query)
{
    return query.isEmpty() || query.endsWith(u'&');
}

/// Decoded, because the address is escaped when it is played, and would be escaped twice.
QString decodedQuery(const QUrl &url)
{
    const QString query = url.query(QUrl::FullyDecoded);
    return isOpenEnded(query) ? query : query + u'&';
}

QString serverOf(const QUrl &url)
{
    return url.scheme() + QLatin1StringView("://") + url.host();
}

/// The address, with what a mount point in its own field says about the query.
QUrl withQueryOf(const QString &mountpoint, QUrl url)
{
    if (!hasPath(url) && !url.hasQuery() && mountpoint.startsWith(u'/') && mountpoint.contains(u'?')) {
        const QUrl parts(mountpoint);
        url.setPath(parts.path());
        url.setQuery(parts.query());
    }
    return url;
}

bool isWhole(const StationFormValues &form, const QUrl &url)
{
    return url.port() != -1 || !url.userInfo().isEmpty() || hasPath(url) ||
           (!form.mountpoint.isEmpty() && !isOpenEnded(url.query()));
}

/// The parts of the address, each in its field. What the address does not say stays.
StationFormValues splitForm(StationFormValues form, const QUrl &url)
{
    form.isPrivate = true;
    form.url = serverOf(url);
    if (const QString query = decodedQuery(url); !query.isEmpty()) {
        form.url += QLatin1StringView("/?") + query;
    }
    if (url.port() != -1 || !isPort(form.port)) {
        form.port = QString::number(url.port(url.scheme() == https ? 443 : 80));
    }
    if (hasPath(url)) {
        form.mountpoint = url.path(QUrl::FullyDecoded);
    }
    if (!url.userInfo().isEmpty()) {
        form.username = url.userName(QUrl::FullyDecoded);
        form.password = url.password(QUrl::FullyDecoded);
    }
    form.scheme = url.scheme();
    return form;
}

/// The address of a public station that names a path, with all that belongs to it.
StationFormValues joinedForm(StationFormValues form, const QUrl &url)
{
    form.url = serverOf(url);
    if (url.port() != -1) {
        form.url += u':' + QString::number(url.port());
    } else if (!form.port.isEmpty()) {
        form.url += u':' + form.port;
    }
    form.url += url.path(QUrl::FullyDecoded) + u'?' + decodedQuery(url);
    form.port.clear();
    form.mountpoint.clear();
    return form;
}

StationFormAdvice publicAdvice(const StationFormValues &form)
{
    const bool hasTwoSlashes = form.url.endsWith(u'/') && form.mountpoint.startsWith(u'/');
    const QUrl url(form.url.chopped(hasTwoSlashes ? 1 : 0) + form.mountpoint);
    if (!hasPath(url) && !url.hasQuery()) {
        if (url.port() == -1 && url.path().isEmpty()) {
            return {};
        }
        StationFormValues remedy = form;
        remedy.url = serverOf(url);
        remedy.mountpoint.clear();
        if (url.port() != -1) {
            remedy.port = QString::number(url.port());
        }
        return {Hint::PortInPublicAddress, remedy};
    }
    const bool isHeard = form.port.isEmpty() || form.port.toInt() == url.port();
    if (url.hasQuery() && isOpenEnded(url.query()) && isHeard && !hasTwoSlashes) {
        return {};
    }
    return {Hint::PathInPublicAddress, joinedForm(form, url)};
}

StationFormAdvice privateAdvice(const StationFormValues &form, const QUrl &url)
{
    if (form.port.isEmpty()) {
        return {Hint::PortMissing, {}};
    }
    if (form.scheme.isEmpty() && url.scheme() == https) {
        StationFormValues remedy = form;
        remedy.scheme = https;
        return {Hint::SchemeMissing, remedy};
    }
    const QString scheme = form.scheme.toLower();
    if (!scheme.isEmpty() && scheme != QLatin1StringView("http") && scheme != https) {
        return {Hint::SchemeUnknown, {}};
    }
    return {};
}

/// Advice on what a public station and a private one have in common, and on what tells them apart.
StationFormAdvice addressAdvice(const StationFormValues &form, const QUrl &url)
{
    if (const QString trimmed = form.url.trimmed(); trimmed != form.url) {
        StationFormValues remedy = form;
        remedy.url = trimmed;
        return {Hint::Blanks, remedy};
    }
    if (!isHttpUrl(urlFromAddress(form.url))) {
        return {Hint::NoServer, {}};
    }
    if (!form.isPrivate && !url.userInfo().isEmpty()) {
        return {Hint::UserInPublicAddress, splitForm(form, withQueryOf(form.mountpoint, url))};
    }
    const QUrl whole = withQueryOf(form.mountpoint, url);
    if (form.isPrivate && isWhole(form, whole)) {
        return {Hint::WholeAddress, splitForm(form, whole)};
    }
    return {};
}
} // namespace

StationFormAdvice adviceFor(const StationFormValues &form)
{
    const bool hasAddress = !isBeingBegun(form.url);
    const QUrl url(form.url);
    if (hasAddress) {
        if (StationFormAdvice advice = addressAdvice(form, url); advice.hint != Hint::None) {
            return advice;
        }
    }
    if (!form.port.isEmpty() && !isPort(form.port)) {
        return {Hint::PortNoNumber, {}};
    }
    if (!form.mountpoint.isEmpty() && !form.mountpoint.startsWith(u'/')) {
        return {Hint::MountpointNoSlash, {}};
    }
    if (hasAddress) {
        StationFormAdvice advice = form.isPrivate ? privateAdvice(form, url) : publicAdvice(form);
        if (advice.hint != Hint::None) {
            return advice;
        }
    }
    if (!form.isPrivate && (!form.username.isEmpty() || !form.password.isEmpty())) {
        return {Hint::CredentialsUnused, {}};
    }
    return {};
}
