#pragma once

#include <QString>

/// A name as it is compared with what the user has typed: without case, accents, blanks and hyphens.
QString foldedName(const QString &name);
