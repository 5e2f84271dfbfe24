#pragma once

#include <QString>
#include <QStringList>

class QCoreApplication;

/// Shows the program in the first of the user's languages that it ships in, and Qt's own texts in the same
/// one where that translation is installed; in English where none is shipped, or where English comes first.
/// Call before anything is shown. The texts of the two status lines are the same in every language.
void installTranslations(QCoreApplication &application);

/// Which of the `shipped` languages ("de") to show to a user who wants `languages` ("de-AT"), the preferred
/// one first. Empty for English.
QString translationFor(const QStringList &languages, const QStringList &shipped);
