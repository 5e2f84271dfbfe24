#include "settings/storedsettings.h"

#include <QLoggingCategory>

namespace {
Q_LOGGING_CATEGORY(lcSettings, "plumtide.settings")

const QString timeoutKey = QStringLiteral("timeout_value");
const QString queryKey = QStringLiteral("query_value");
const QString userAgentKey = QStringLiteral("useragent_value");
} // namespace

StoredSettings::File::File()
    : QSettings(QSettings::NativeFormat, QSettings::UserScope, QStringLiteral("plumtide"),
                QStringLiteral("plumtide"))
{
    setFallbacksEnabled(false);
}

QVariant StoredSettings::timeout() const
{
    return stored(timeoutKey);
}

QString StoredSettings::queryLimit() const
{
    bool isInteger = false;
    // From the text: QVariant's own conversion would cut off what does not fit.
    const qint64 limit = stored(queryKey).toString().toLongLong(&isInteger);
    return isInteger ? QString::number(limit) : QString();
}

QVariant StoredSettings::userAgent() const
{
    return stored(userAgentKey);
}

void StoredSettings::setTimeout(qint64 seconds)
{
    settings_.setValue(timeoutKey, seconds);
}

void StoredSettings::setQueryLimit(qint64 stations)
{
    settings_.setValue(queryKey, stations);
}

void StoredSettings::setUserAgent(int index)
{
    settings_.setValue(userAgentKey, index);
}

void StoredSettings::synchronize()
{
    File file;
    file.sync();
    if (file.status() != QSettings::NoError) {
        qCWarning(lcSettings).noquote() << "cannot write" << file.fileName();
    }
}

QVariant StoredSettings::stored(const QString &key)
{
    QVariant value = File().value(key);
    return value.canConvert<qint64>() && !value.toString().isEmpty() ? value : QVariant();
}
