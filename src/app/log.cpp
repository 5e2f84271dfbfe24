#include "app/log.h"

#include <QLoggingCategory>
#include <cstdio>

namespace {
void writeLine(const QString &text)
{
    const QByteArray line = text.toUtf8() + '\n';
    std::fwrite(line.constData(), 1, static_cast<std::size_t>(line.size()), stderr);
}

void writeMessage(QtMsgType, const QMessageLogContext &, const QString &message)
{
    writeLine(message);
}

void writeFormatted(QtMsgType severity, const QMessageLogContext &context, const QString &message)
{
    writeLine(qFormatLogMessage(severity, context, message));
}
} // namespace

void installLog()
{
    qInstallMessageHandler(qEnvironmentVariableIsEmpty("QT_MESSAGE_PATTERN") ? writeMessage : writeFormatted);
}
