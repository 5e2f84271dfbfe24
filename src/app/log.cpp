#include "app/log.h"

#include <QLoggingCategory>
#include <cstdio>

namespace {
void writeLine(QtMsgType, const QMessageLogContext &, const QString &message)
{
    const QByteArray line = message.toUtf8() + '\n';
    std::fwrite(line.constData(), 1, static_cast<std::size_t>(line.size()), stderr);
}
} // namespace

void installLog()
{
    qInstallMessageHandler(writeLine);
}
