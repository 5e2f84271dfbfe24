#pragma once

#include "desktop/singleinstance.h"

#include <QDBusAbstractAdaptor>

/// The D-Bus interface of a SingleInstance. Its methods are spelled as the interface has them.
class ApplicationAdaptor : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
    explicit ApplicationAdaptor(SingleInstance *instance)
        : QDBusAbstractAdaptor(instance)
        , instance_(*instance)
    {
    }

public Q_SLOTS:
    void Activate(const QVariantMap &platform_data)
    {
        Q_EMIT instance_.activated(Activation::fromPlatformData(platform_data));
    }
    /// There are no documents to open; the window is shown.
    void Open(const QStringList &, const QVariantMap &platform_data) { Activate(platform_data); }
    /// Unknown actions do nothing.
    void ActivateAction(const QString &action_name, const QVariantList &, const QVariantMap &)
    {
        if (const auto command = remoteCommand(action_name)) {
            Q_EMIT instance_.commanded(*command);
        }
    }

private:
    SingleInstance &instance_;
};
