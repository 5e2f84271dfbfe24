#pragma once

#include "support/gapwatch.h"

#include <QFile>
#include <QTest>
#include <cstdio>

/// What one fault costs this process: how long it blocked the event loop, and how much memory it took at its
/// peak.
class FaultWatch
{
public:
    /// The most that any fault may take on top of what the process had, in megabytes: the longest answer that
    /// is taken, once more while it grows, and as much again for a machine too busy to look in time.
    static constexpr double mostMegabytes = 128;

    /// Begins anew.
    void start()
    {
        // Resets the peak of the resident memory.
        QFile references(QStringLiteral("/proc/self/clear_refs"));
        if (references.open(QIODevice::WriteOnly)) {
            references.write("5");
        }
        references.close();
        before_ = megabytes("VmRSS:");
        gap_.longest();
    }

    /// Fails the test where the fault took too much memory. For bench/faults, which sets FAULT_TABLE, prints
    /// a line of its table.
    void report(const char *end)
    {
        const double grown = megabytes("VmHWM:") - before_;
        if (qEnvironmentVariableIsSet("FAULT_TABLE")) {
            const char *row = QTest::currentDataTag();
            std::printf("| %-60s | %-30s | %6.0f ms | %5.1f MB |\n",
                        row != nullptr ? row : QTest::currentTestFunction(), end, gap_.longest(), grown);
            std::fflush(stdout);
        }
        QVERIFY2(grown <= mostMegabytes, qPrintable(QString::number(grown) + QStringLiteral(" MB")));
    }

private:
    static double megabytes(QByteArrayView name)
    {
        QFile status(QStringLiteral("/proc/self/status"));
        if (status.open(QIODevice::ReadOnly)) {
            for (const QByteArray &line : status.readAll().split('\n')) {
                if (line.startsWith(name)) {
                    return line.mid(name.size()).trimmed().split(' ').constFirst().toDouble() * 1024 / 1e6;
                }
            }
        }
        return 0;
    }

    GapWatch gap_;
    double before_ = 0;
};
