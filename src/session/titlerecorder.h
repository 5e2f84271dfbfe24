#pragma once

#include "session/titlehistory.h"

#include <QObject>
#include <QTimer>

struct NowPlaying;

/// Enters what is heard into the history of titles: a title that has stood for a second, or that nothing has
/// followed. However fast a station changes its titles, the history stays calm. Main thread.
class TitleRecorder : public QObject
{
    Q_OBJECT

public:
    /// The history must outlive this object.
    explicit TitleRecorder(TitleHistory &history);

    /// What is heard from now on.
    void follow(const NowPlaying &nowPlaying);

private:
    TitleHistory &history_;
    /// What is heard; without a title where there is none.
    HeardTitle current_;
    /// Runs until the title has stood long enough.
    QTimer settling_;
};
