#include "fuzz/targets.h"

#include <QDir>
#include <QLoggingCategory>
#include <cstdio>

/// Gives every target the inputs in its folder below the one that is named: replay CORPUS.
int main(int argc, char **argv)
{
    QLoggingCategory::setFilterRules(QStringLiteral("*=false"));
    const QDir corpus(argc > 1 ? QString::fromLocal8Bit(argv[1]) : QString());
    bool complete = true;
    for (const auto &[name, run] : fuzzTargets) {
        const QDir folder(corpus.filePath(QString::fromLatin1(name)));
        const QStringList inputs = folder.entryList(QDir::Files);
        for (const QString &input : inputs) {
            std::printf("%s/%s\n", name, qPrintable(input));
            std::fflush(stdout);
            QFile file(folder.filePath(input));
            complete = file.open(QIODevice::ReadOnly) && complete;
            run(file.readAll());
        }
        complete = complete && !inputs.isEmpty();
    }
    return complete ? 0 : 1;
}
