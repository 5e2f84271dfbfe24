// For builds with ThreadSanitizer alone. The functions here take the place of Qt's, which they call, because
// the program comes before its libraries.

#include "threads/handovers.h"

#include <QMetaObject>
#include <QRunnable>
#include <QThreadPool>
#include <dlfcn.h>
#include <functional>
#include <utility>

#if QT_VERSION < QT_VERSION_CHECK(6, 6, 0)

namespace {
template <class Function>
Function qtFunction(const char *mangledName)
{
    return reinterpret_cast<Function>(::dlsym(RTLD_NEXT, mangledName));
}

/// Work that is known to have been made before it begins, and to be done before the pool is waited for.
class Handover : public QRunnable
{
public:
    Handover(QThreadPool *pool, std::function<void()> work)
        : pool_(pool)
        , work_(std::move(work))
    {
        __tsan_release(this);
    }

    void run() override
    {
        __tsan_acquire(this);
        std::exchange(work_, nullptr)();
        __tsan_release(pool_);
    }

private:
    QThreadPool *pool_;
    std::function<void()> work_;
};
} // namespace

void QThreadPool::start(std::function<void()> work, int priority)
{
    start(new Handover(this, std::move(work)), priority);
}

bool QThreadPool::waitForDone(int milliseconds)
{
    static const auto wait = qtFunction<bool (*)(QThreadPool *, int)>("_ZN11QThreadPool11waitForDoneEi");
    const bool isDone = wait(this, milliseconds);
    __tsan_acquire(this);
    return isDone;
}

bool QMetaObject::invokeMethodImpl(QObject *object, QtPrivate::QSlotObjectBase *slot, Qt::ConnectionType type,
                                   void *result)
{
    using Invoke = bool (*)(QObject *, QtPrivate::QSlotObjectBase *, Qt::ConnectionType, void *);
    static const auto invoke = qtFunction<Invoke>(
        "_ZN11QMetaObject16invokeMethodImplEP7QObjectPN9QtPrivate15QSlotObjectBaseEN2Qt14ConnectionTypeEPv");
    __tsan_release(object);
    return invoke(object, slot, type, result);
}

#endif
