#include "session/radiosession.h"

#include "base/displaytext.h"

RadioSession::RadioSession(DirectorySource &directory, Backend &backend, const Settings &settings,
                           QObject *parent)
    : QObject(parent)
    , directory_(directory)
    , heard_(backend.heardStream())
    , playback_(backend, settings.timeout, settings.userAgent)
    , favourites_(directory)
    , recorder_(history_)
{
    connect(&playback_, &StreamPlayback::started, this, [this] {
        started_ = true;
        if (!starting_) {
            record_.reset();
            update();
        }
    });
    connect(&playback_, &StreamPlayback::stateChanged, this, &RadioSession::update);
    connect(&heard_, &HeardStream::changed, this, &RadioSession::update);
    connect(this, &RadioSession::nowPlayingChanged, &recorder_, &TitleRecorder::follow);
}

RadioSession::~RadioSession()
{
    // The player that goes with this object falls silent, which nobody needs to be told any more.
    disconnect(&heard_, nullptr, this, nullptr);
}

bool RadioSession::playEntry(const StationEntry &station)
{
    const QString address = directory_.playAddress(station);
    return start(nullptr,
                 [&] { playback_.playRadioFromURL(address, station.text(QLatin1StringView("name"))); });
}

bool RadioSession::playRecord(const StationRecord &station)
{
    if (!station || !station->flag(RadioField::custom)) {
        return playRecordUrl(station);
    }
    return start(station, [&] { playback_.playRadioCustomWithObject(station); });
}

bool RadioSession::playRecordUrl(const StationRecord &station)
{
    return station && start(station, [&] {
               playback_.playRadioFromURL(station->text(RadioField::url), station->text(RadioField::name));
           });
}

template <class Start>
bool RadioSession::start(const StationRecord &station, const Start &startPlaying)
{
    starting_ = true;
    started_ = false;
    startPlaying();
    starting_ = false;
    if (started_) {
        record_ = station;
    }
    update();
    return started_;
}

bool RadioSession::playFavouriteBeside(qsizetype step)
{
    const StationRecords stations = favourites_.rack().radioItemCollectionArray();
    const qsizetype count = stations.size();
    const qsizetype playing = favourites_.rack().indexOf(record_.get());
    const qsizetype beforeFirst = step > 0 ? -1 : count;
    qsizetype index = playing >= 0 ? playing : beforeFirst;
    for (qsizetype tried = 0; tried < count; ++tried) {
        index = (index + step + count) % count;
        if (playRecord(stations.at(index))) {
            return true;
        }
    }
    return false;
}

void RadioSession::update()
{
    if (starting_) {
        return;
    }
    NowPlaying now;
    now.state = playback_.state();
    if (now.state == PlaybackState::Stopped) {
        record_.reset();
    } else {
        now.station = displayText(playback_.station());
        now.artwork = record_ ? record_->text(RadioField::imageFilePath) : QString();
    }
    const StreamInfo &heard = heard_.info();
    now.title = displayText(heard.title).trimmed();
    now.codec = heard.codec;
    now.bitrate = heard.bitrate;
    if (now != nowPlaying_) {
        nowPlaying_ = now;
        Q_EMIT nowPlayingChanged(now);
    }
}
