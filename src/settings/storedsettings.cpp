#include "settings/storedsettings.h"

StoredSettings::StoredSettings()
    : settings_(QSettings::NativeFormat, QSettings::UserScope, QStringLiteral("plumtide"),
                QStringLiteral("plumtide"))
{
    settings_.setFallbacksEnabled(false);
}

QVariant StoredSettings::timeout() const
{
    return settings_.value("timeout_value");
}

QString StoredSettings::queryLimit() const
{
    return settings_.value("query_value").toString();
}

QVariant StoredSettings::userAgent() const
{
    return settings_.value("useragent_value");
}
