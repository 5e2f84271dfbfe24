#include "app/translations.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>
#include <memory>

namespace {
bool install(QCoreApplication &application, const QString &name, const QString &language,
             const QString &folder)
{
    auto translator = std::make_unique<QTranslator>(&application);
    return translator->load(name + u'_' + language, folder) &&
           QCoreApplication::installTranslator(translator.release());
}
} // namespace

QString translationFor(const QStringList &languages, const QStringList &shipped)
{
    for (const QString &wanted : languages) {
        // With the country, the script, or neither: "de-AT", "zh-Hant-TW".
        QString language = wanted.section(u'-', 0, 0);
        if (language == QLatin1StringView("en") || language == QLatin1StringView("C")) {
            return {};
        }
        if (shipped.contains(language)) {
            return language;
        }
    }
    return {};
}

void installTranslations(QCoreApplication &application)
{
    const QString language = translationFor(QLocale::system().uiLanguages(), {QStringLiteral("de")});
    if (!language.isEmpty()) {
        install(application, QStringLiteral("plumtide"), language, QStringLiteral(":/translations"));
        install(application, QStringLiteral("qtbase"), language,
                QLibraryInfo::path(QLibraryInfo::TranslationsPath));
    }
}
