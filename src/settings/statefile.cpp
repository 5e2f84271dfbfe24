#include "settings/statefile.h"

#include <QDir>
#include <QLoggingCategory>
#include <QSettings>
#include <chrono>
#include <utility>

namespace {
Q_LOGGING_CATEGORY(lcState, "plumtide.state")

/// Long enough for a slider that is being dragged to come to rest.
constexpr std::chrono::milliseconds writeDelay{500};

void writeTo(const QString &path, const QVariantMap &values)
{
    QSettings file(path, QSettings::IniFormat);
    for (auto value = values.constBegin(); value != values.constEnd(); ++value) {
        file.setValue(value.key(), value.value());
    }
    file.sync();
    if (file.status() != QSettings::NoError) {
        qCWarning(lcState).noquote() << "cannot write" << path;
    }
}
} // namespace

StateFile::StateFile(QObject *parent)
    : QObject(parent)
{
    const QSettings file(path(), QSettings::IniFormat);
    for (const QString &key : file.allKeys()) {
        values_.insert(key, file.value(key));
    }
    // One thread, so that writes reach the file in their order.
    writer_.setMaxThreadCount(1);
    writeDelay_.setSingleShot(true);
    writeDelay_.setInterval(writeDelay);
    connect(&writeDelay_, &QTimer::timeout, this, &StateFile::write);
}

StateFile::~StateFile()
{
    write();
    writer_.waitForDone();
}

int StateFile::integer(QAnyStringView key, int fallback) const
{
    bool isInteger = false;
    // From the text: QVariant's own conversion would cut off what does not fit.
    const int value = values_.value(key.toString()).toString().toInt(&isInteger);
    return isInteger ? value : fallback;
}

QList<int> StateFile::integers(QAnyStringView key) const
{
    QList<int> numbers;
    for (const QString &text : texts(key)) {
        bool isInteger = false;
        numbers.append(text.toInt(&isInteger));
        if (!isInteger) {
            return {};
        }
    }
    return numbers;
}

QStringList StateFile::texts(QAnyStringView key) const
{
    return values_.value(key.toString()).toStringList();
}

void StateFile::setIntegers(QAnyStringView key, const QList<int> &values)
{
    QStringList texts;
    for (const int value : values) {
        texts.append(QString::number(value));
    }
    setValue(key, texts);
}

void StateFile::setValue(QAnyStringView key, const QVariant &value)
{
    const QString name = key.toString();
    if (values_.value(name) != value) {
        values_.insert(name, value);
        changed_.insert(name, value);
        writeDelay_.start();
    }
}

QString StateFile::path()
{
    // A relative path is ignored, as the XDG base directory specification says.
    QString folder = qEnvironmentVariable("XDG_STATE_HOME");
    if (!QDir::isAbsolutePath(folder)) {
        folder = QDir::homePath() + QStringLiteral("/.local/state");
    }
    return folder + QStringLiteral("/plumtide/state.conf");
}

void StateFile::write()
{
    if (!changed_.isEmpty()) {
        writer_.start([file = path(), values = std::exchange(changed_, {})] { writeTo(file, values); });
    }
}
