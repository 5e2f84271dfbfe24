#pragma once

#include "directory/directorysource.h"
#include "favourites/radiomodel.h"
#include "playback/streamplayback.h"
#include "session/favourites.h"
#include "session/nowplaying.h"
#include "session/titlehistory.h"
#include "session/titlerecorder.h"

#include <QObject>

/// The radio without its window: the directory that it asks, what it plays, and the favourites. Whoever wants
/// something played hands over a station, wherever it is shown, and whoever shows what plays follows one
/// value. Main thread.
class RadioSession : public QObject
{
    Q_OBJECT

public:
    /// The stored choices that a start is made with.
    struct Settings
    {
        StreamPlayback::StoredTimeout timeout;
        StreamPlayback::StoredUserAgent userAgent;
    };

    /// Both must outlive this object.
    RadioSession(DirectorySource &directory, Backend &backend, const Settings &settings,
                 QObject *parent = nullptr);
    ~RadioSession() override;

    /// Plays a station of the directory's latest answer. False, and nothing happens, where the directory
    /// knows no address for it.
    bool playEntry(const StationEntry &station);
    /// Plays a station of the user's: one that they have entered from its address fields, any other from its
    /// url. False, and what plays goes on, where those are not filled in.
    bool playRecord(const StationRecord &station);
    /// The same from the url alone, whoever has entered the station: what a favourite's play button does.
    bool playRecordUrl(const StationRecord &station);
    /// Plays the favourite behind the one that plays, or the first one where none does; begins again at the
    /// end, and leaves out those that cannot be played. False where there is nothing to play.
    bool playNextFavourite() { return playFavouriteBeside(1); }
    /// The same the other way round, beginning with the last one.
    bool playPreviousFavourite() { return playFavouriteBeside(-1); }

    const NowPlaying &nowPlaying() const { return nowPlaying_; }

    DirectorySource &directory() { return directory_; }
    StreamPlayback &playback() { return playback_; }
    const HeardStream &heardStream() const { return heard_; }
    Favourites &favourites() { return favourites_; }
    TitleHistory &history() { return history_; }

Q_SIGNALS:
    /// On a real change only.
    void nowPlayingChanged(const NowPlaying &nowPlaying);

private:
    template <class Start>
    bool start(const StationRecord &station, const Start &startPlaying);
    bool playFavouriteBeside(qsizetype step);
    void update();

    DirectorySource &directory_;
    const HeardStream &heard_;
    StreamPlayback playback_;
    Favourites favourites_;
    TitleHistory history_;
    TitleRecorder recorder_;
    NowPlaying nowPlaying_;
    /// Of what plays; null where it has none.
    StationRecord record_;
    /// A start is under way, and what it changes is told once.
    bool starting_ = false;
    bool started_ = false;
};
