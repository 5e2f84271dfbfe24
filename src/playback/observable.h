#pragma once

#include <QList>
#include <QString>
#include <QVariant>

class Observable;

/// Is told of changes. The one handler gets those of every key path and object that it observes.
class Observer
{
public:
    virtual ~Observer() = default;

    /// `newValue` is what `object` holds under `keyPath` now. Called on the main thread.
    virtual void observeValueForKeyPath(QStringView keyPath, const Observable *object,
                                        const QVariant &newValue) = 0;
};

/// An object that tells observers of changes of its named values, each observer of the key paths it asked
/// for. Nothing is sent when an observer is added. Used on the main thread only.
class Observable
{
public:
    Observable() = default;
    Observable(const Observable &) = delete;
    Observable &operator=(const Observable &) = delete;
    virtual ~Observable() = default;

    /// One notification a change for each time that an observer has been added.
    virtual void addObserver(Observer *observer, QStringView keyPath);
    /// Takes one addition back; does nothing where there is none.
    virtual void removeObserver(Observer *observer, QStringView keyPath);

protected:
    /// An observer may remove itself or others, or release this object, from within its handler; the caller
    /// keeps the object alive until this returns.
    void notify(QStringView keyPath, const QVariant &newValue);

private:
    struct Observation
    {
        Observer *observer;
        QString keyPath;

        bool operator==(const Observation &) const = default;
    };

    QList<Observation> observations_;
};
