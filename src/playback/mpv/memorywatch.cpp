#include "playback/mpv/memorywatch.h"

#include <QFile>
#include <unistd.h>

/// proc(5): the second number of "statm" is what is resident, the third what of that is shared, in pages.
qint64 MemoryWatch::ownBytes()
{
    QFile pages(QStringLiteral("/proc/self/statm"));
    if (!pages.open(QIODevice::ReadOnly)) {
        return 0;
    }
    const QList<QByteArray> numbers = pages.readAll().split(' ');
    return (numbers.value(1).toLongLong() - numbers.value(2).toLongLong()) * sysconf(_SC_PAGESIZE);
}
