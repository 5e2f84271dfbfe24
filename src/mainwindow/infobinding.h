#pragma once

#include "playback/heardstream.h"

#include <QDeadlineTimer>
#include <QObject>
#include <QTimer>

class InfoView;
class RadioSession;

/// Binds what the radio plays to the information area, which shows it. However fast a station changes its
/// titles, the area stays calm.
class InfoBinding : public QObject
{
    Q_OBJECT

public:
    /// Both must outlive this object.
    InfoBinding(InfoView &view, const RadioSession &session);

private:
    /// What the area is to show now.
    StreamInfo info() const;
    void changed();
    void show();

    InfoView &view_;
    const RadioSession &session_;
    StreamInfo shown_;
    /// The area stays as it is until then; what comes meanwhile waits for the timer.
    QDeadlineTimer calm_{0};
    QTimer showing_;
};
