#include "app/environment.h"

#include "base/displaytext.h"
#include "http/address.h"

#include <optional>
#include <tuple>

namespace {
/// In KiB.
constexpr qint64 leastPauseBuffer = 64;
constexpr qint64 greatestPauseBuffer = 4LL * 1024 * 1024;

/// The address in a variable without its trailing slashes; null where the variable holds something else, or
/// an address in a form that the directory client cannot use.
QString httpAddress(const QString &value)
{
    const QUrl url(value, QUrl::StrictMode);
    if (!isHttpUrl(url) || url.hasQuery() || url.hasFragment() || !url.userInfo().isEmpty()) {
        return {};
    }
    QString address = value;
    while (address.endsWith(u'/')) {
        address.chop(1);
    }
    // It goes through the same escaping as every address, which not all of them survive.
    return isHttpUrl(urlFromAddress(address)) ? address : QString();
}

QString refusal(const QString &variable, const QString &value, const QString &wanted)
{
    return QStringLiteral("%1: \"%2\" is not %3").arg(variable, displayText(value), wanted);
}
} // namespace

std::variant<Environment, QString> Environment::from(const QProcessEnvironment &variables)
{
    Environment environment;
    for (const auto &[variable, setting, end] :
         {std::tuple(QStringLiteral("PLUMTIDE_DIRECTORY_URL"), &environment.directory.baseAddress,
                     QStringLiteral("/")),
          std::tuple(QStringLiteral("PLUMTIDE_TUNEIN_URL"), &environment.directory.tuneInBaseAddress,
                     QString())}) {
        if (const QString value = variables.value(variable); !value.isEmpty()) {
            const QString address = httpAddress(value);
            if (address.isNull()) {
                return refusal(variable, withoutUserInfo(value), QStringLiteral("an http or https address"));
            }
            *setting = address + end;
        }
    }
    if (const QString key = variables.value(QStringLiteral("PLUMTIDE_DIRECTORY_KEY")); !key.isEmpty()) {
        environment.directory.developerKey = key;
    }
    const auto outputVariable = QStringLiteral("PLUMTIDE_AUDIO_OUTPUT");
    if (const QString value = variables.value(outputVariable); !value.isEmpty()) {
        const auto output = AudioOutput::fromText(value);
        if (!output) {
            return refusal(outputVariable, value, QStringLiteral("\"null\" or \"pcm:FILE\""));
        }
        environment.audioOutput = *output;
    }
    const auto pauseVariable = QStringLiteral("PLUMTIDE_PAUSE_BUFFER");
    if (const QString value = variables.value(pauseVariable); !value.isEmpty()) {
        bool isNumber = false;
        const qint64 kibibytes = value.toLongLong(&isNumber);
        if (!isNumber || kibibytes < leastPauseBuffer || kibibytes > greatestPauseBuffer) {
            return refusal(pauseVariable, value,
                           QStringLiteral("a number of KiB from %1 to %2")
                               .arg(leastPauseBuffer)
                               .arg(greatestPauseBuffer));
        }
        environment.pausedBufferBytes = kibibytes * 1024;
    }
    return environment;
}
