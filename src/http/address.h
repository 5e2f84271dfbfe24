#pragma once

#include <QByteArray>
#include <QString>
#include <QUrl>

/// The whole text with every character escaped that may not stand in a URL: its UTF-8 bytes as percent
/// sequences in upper case. Letters, digits and `!$&'()*+,-./:;=?@_~` stay; `%` itself becomes `%25`, so that
/// text which is escaped already is escaped once more.
QByteArray percentEscaped(const QString &text);

/// The URL that `address` names after percentEscaped(); an invalid URL where it does not parse.
QUrl urlFromAddress(const QString &address);

/// Whether `url` is valid, has a host, and its scheme is http or https.
bool isHttpUrl(const QUrl &url);

/// The port of an http or https URL, or its scheme's own where it names none.
quint16 effectivePort(const QUrl &url);

/// Whether two URLs have the same scheme, host and port, default ports counted: what a credential for one
/// of them may be sent to.
bool isSameOrigin(const QUrl &left, const QUrl &right);
