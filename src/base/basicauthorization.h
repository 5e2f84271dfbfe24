#pragma once

#include <QString>

/// The value of an HTTP Authorization header of the Basic scheme (RFC 7617) for the two, null texts taken as
/// empty. Where either has a character outside ASCII the result is "Basic " with nothing behind it: nothing
/// is sent in a spelling that the server might take for another.
QString basicAuthorization(const QString &username, const QString &password);
