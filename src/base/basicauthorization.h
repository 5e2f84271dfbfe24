#pragma once

#include <QString>

/// The value of an HTTP Authorization header of the Basic scheme (RFC 7617) for the two, null texts taken as
/// empty. Where either has a character outside ASCII the result is "Basic " and nothing more: no credentials
/// are sent in an encoding that the server might read differently.
QString basicAuthorization(const QString &username, const QString &password);
