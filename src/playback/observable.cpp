#include "playback/observable.h"

void Observable::addObserver(Observer *observer, QStringView keyPath)
{
    observations_.append({observer, keyPath.toString()});
}

void Observable::removeObserver(Observer *observer, QStringView keyPath)
{
    observations_.removeOne(Observation{observer, keyPath.toString()});
}

void Observable::notify(QStringView keyPath, const QVariant &newValue)
{
    const QList<Observation> asked = observations_;
    for (const Observation &observation : asked) {
        if (observation.keyPath == keyPath && observations_.contains(observation)) {
            observation.observer->observeValueForKeyPath(keyPath, this, newValue);
        }
    }
}
