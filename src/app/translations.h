#pragma once

#include <QString>
#include <QStringList>

class QCoreApplication;

/// Shows the program in the first of the user's languages that it ships in, and what the toolkit itself says
/// in the same one where that is installed; in English where none is, or where English comes first. To be
/// called before anything is shown. The texts of the two status lines are the same in every language.
void installTranslations(QCoreApplication &application);

/// Which of the `shipped` languages ("de") to show to somebody who wants `languages` ("de-AT"), the best one
/// first. Empty for English.
QString translationFor(const QStringList &languages, const QStringList &shipped);
