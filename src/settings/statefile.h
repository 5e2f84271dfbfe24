#pragma once

#include <QAnyStringView>
#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QThreadPool>
#include <QTimer>
#include <QVariantMap>

/// What the window remembers from one start to the next, in plumtide/state.conf below the user's state folder
/// (XDG_STATE_HOME). Main thread; the file is read once, when this is made, and written on a thread of its
/// own, half a second after the last change and at the latest when this is destroyed. A file that cannot be
/// written costs a line in the log, and nothing else.
class StateFile : public QObject
{
    Q_OBJECT

public:
    explicit StateFile(QObject *parent = nullptr);
    ~StateFile() override;

    /// `fallback` where nothing is stored under `key`, or no integer.
    int integer(QAnyStringView key, int fallback) const;
    /// Empty where nothing is stored under `key`, or a list that holds anything but integers.
    QList<int> integers(QAnyStringView key) const;
    /// Empty where nothing is stored under `key`.
    QStringList texts(QAnyStringView key) const;
    /// A number, a text or a QStringList.
    void setValue(QAnyStringView key, const QVariant &value);
    void setIntegers(QAnyStringView key, const QList<int> &values);

    /// Where the file is.
    static QString path();

private:
    void write();

    QVariantMap values_;
    /// Changes that are not written yet.
    QVariantMap changed_;
    QTimer writeDelay_;
    QThreadPool writer_;
};
