#include "playback/namelookup.h"

#include <QHostInfo>
#include <utility>

NameLookup::~NameLookup()
{
    cancel();
}

void NameLookup::start(const QString &name)
{
    id_ = QHostInfo::lookupHost(name, this, [this](const QHostInfo &info) {
        // An answer that is on its way when its lookup is cancelled still arrives.
        if (info.lookupId() != id_) {
            return;
        }
        id_ = noLookup;
        if (info.error() == QHostInfo::NoError) {
            Q_EMIT found();
        } else {
            Q_EMIT notFound();
        }
    });
}

void NameLookup::cancel()
{
    if (id_ != noLookup) {
        QHostInfo::abortHostLookup(std::exchange(id_, noLookup));
    }
}
