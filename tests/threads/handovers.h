#pragma once

#include <QCoreApplication>

#ifdef __SANITIZE_THREAD__
#include <sanitizer/tsan_interface.h>
#endif

/// Whether ThreadSanitizer, where this is built with it, sees what Qt hands from thread to thread. Qt's own
/// locks are hidden from it in a library that was not built with it: work for a pool, and calls for an event
/// loop, would look like races. Where it is known how Qt is handed them, handovers.cpp stands between.
#if defined(__SANITIZE_THREAD__) && QT_VERSION >= QT_VERSION_CHECK(6, 6, 0)
inline constexpr bool handoversAreSeen = false;
#else
inline constexpr bool handoversAreSeen = true;
#endif

/// Whoever posts an event has done everything before it arrives.
class HandoverApplication : public QCoreApplication
{
public:
    using QCoreApplication::QCoreApplication;

    bool notify(QObject *receiver, QEvent *event) override
    {
#ifdef __SANITIZE_THREAD__
        __tsan_acquire(receiver);
#endif
        return QCoreApplication::notify(receiver, event);
    }
};
