#pragma once

#include <QObject>

/// How a std::unique_ptr lets go of an object that may be what is signalling just now: it lives until the
/// event loop is back, but nobody hears of it any more.
struct DeleteLater
{
    void operator()(QObject *object) const
    {
        object->disconnect();
        object->deleteLater();
    }
};
