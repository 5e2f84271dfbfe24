#pragma once

#include "base/deletelater.h"
#include "playback/mpv/memorywatch.h"
#include "playback/mpv/readallowance.h"
#include "playback/mpv/timedtitles.h"
#include "playback/stream/streamresolver.h"
#include "playback/stream/streamsource.h"

#include <QObject>
#include <QTimer>
#include <memory>
#include <mpv/client.h>

class MpvHandle;
struct CacheState;
struct StreamRequest;

/// Has one core load the streams that are found behind an address, one after the other until one plays.
/// libmpv opens a pipe while the stream is still looked for, so that neither waits for the other. Tells what
/// libmpv reports of the current stream from what it still reports of those before, and ends one that takes
/// the process's memory. Main thread.
class StreamLoad : public QObject
{
    Q_OBJECT

public:
    /// The handle must outlive this object.
    StreamLoad(MpvHandle &handle, const StreamRequest &request);
    ~StreamLoad() override;

    void start();
    /// A stream is heard: no further one is tried.
    void settle();

    /// libmpv has answered a command.
    void replied(const mpv_event &reply);
    /// libmpv has opened a stream.
    void opened();
    /// What the buffer holds of it.
    void cacheChanged(const CacheState &state);
    /// libmpv has ended a stream. Whether it is the current one, and has not been stopped; unless one is
    /// heard already, the next is tried then.
    bool ended(const mpv_event_end_file &end);

Q_SIGNALS:
    /// There is no stream to play. To be received by a queued connection where this object may be deleted.
    void failed();
    /// What the station says that is heard now, as it came.
    void titleHeard(const QByteArray &title);
    /// Nothing more will come of the current stream than what libmpv has or is about to read.
    void sourceFinished();
    /// The server of the current stream says something else beside the sound.
    void factsChanged(const StreamSource::Facts &facts);

private:
    enum class Stage {
        None,      ///< libmpv has none: before the start, and after the last has ended
        Requested, ///< libmpv has been asked for one, and has not answered yet
        Opening,   ///< libmpv has given it its number
        Opened,    ///< libmpv has recognised its format
    };

    static bool mayFollow(Stage from, Stage to);
    void enter(Stage stage);
    void load(bool isRepeated);
    void take(StreamSource *stream);
    void drop();
    void attach();
    void repeat();
    void checkMemory();
    void readerHeld();
    void extendAllowance();
    void giveUp();

    MpvHandle &handle_;
    /// Null once a stream is heard.
    std::unique_ptr<StreamResolver> resolver_;
    Stage stage_ = Stage::None;
    /// What libmpv reads.
    std::shared_ptr<BytePipe> pipe_;
    /// What writes it; null while it is looked for. It may be what is telling something just now.
    std::unique_ptr<StreamSource, DeleteLater> source_;
    bool isRepeated_ = false;
    TimedTitles titles_;
    ReadAllowance allowance_;
    /// What has been read may have become sound that libmpv has not reported yet.
    QTimer reportTimer_;
    /// The number of the latest request, which its answer carries.
    quint64 request_ = 0;
    /// libmpv's number for the current stream, from Stage::Opening on.
    qint64 entry_ = 0;
    MemoryWatch memory_;
    QTimer memoryTimer_;
};
