#pragma once

#include "session/titlehistory.h"

#include <QDeadlineTimer>
#include <QObject>
#include <QString>
#include <QTimer>

class HeardStream;
class InfoView;
struct StreamInfo;

/// Binds what is heard to the information area, which shows it, and to the history of titles, which it owns.
/// However fast a station changes its titles, both stay calm.
class InfoBinding : public QObject
{
    Q_OBJECT

public:
    /// Both must outlive this object.
    InfoBinding(InfoView &view, const HeardStream &heard);

    TitleHistory &history() { return history_; }

    /// The station that what is heard from now on comes from.
    void setStation(const QString &name);

private:
    void heardChanged(const StreamInfo &info);
    void titleChanged(const QString &title);
    void show();

    InfoView &view_;
    const HeardStream &heard_;
    TitleHistory history_;
    QString station_;
    /// What is shown; without a title where there is none.
    HeardTitle current_;
    /// Runs until the title has stood long enough for the history.
    QTimer settling_;
    /// The area stays as it is until then; what comes meanwhile waits for the timer.
    QDeadlineTimer calm_{0};
    QTimer showing_;
};
