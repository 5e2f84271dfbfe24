#include "app/translations.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>
#include <memory>

void installTranslations(QCoreApplication &application)
{
    const auto install = [&application](const QString &name, const QString &folder) {
        auto translator = std::make_unique<QTranslator>(&application);
        if (translator->load(QLocale::system(), name, QStringLiteral("_"), folder)) {
            QCoreApplication::installTranslator(translator.release());
            return true;
        }
        return false;
    };
    // A dialog of the toolkit in another language than the window around it would be worse than English.
    if (install(QStringLiteral("plumtide"), QStringLiteral(":/translations"))) {
        install(QStringLiteral("qtbase"), QLibraryInfo::path(QLibraryInfo::TranslationsPath));
    }
}
