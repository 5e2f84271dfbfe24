#pragma once

#include <QString>

/// The longest text that displayText() gives, in UTF-16 units.
inline constexpr qsizetype maximumDisplayLength = 512;

/// Text from outside as it may be shown or logged: one line, without control characters and without the marks
/// that turn the direction of what follows, at most maximumDisplayLength long (an ellipsis stands for the
/// rest). Line ends and tabs become blanks. Everything else stays. For display only: what is stored keeps the
/// text as received.
QString displayText(const QString &text);

/// The text of an address without user name and password (`user:password@`), for whoever sees, copies or logs
/// it; everything else stays as it is, and so does text that is no address.
QString withoutUserInfo(const QString &address);
