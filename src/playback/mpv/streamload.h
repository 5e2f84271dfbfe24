#pragma once

#include "playback/mpv/memorywatch.h"
#include "playback/streamheaders.h"
#include "playback/streamresolver.h"

#include <QObject>
#include <QTimer>
#include <QUrl>
#include <memory>
#include <mpv/client.h>

class MpvHandle;
struct StreamRequest;

/// Has one core load the streams that are found behind an address, one after the other until one plays. Tells
/// what libmpv reports of the current one from what it still reports of those before, and watches the
/// process's memory while it is opened. Main thread.
class StreamLoad : public QObject
{
    Q_OBJECT

public:
    /// The handle must outlive this object.
    StreamLoad(MpvHandle &handle, const StreamRequest &request);

    void start();
    /// A stream is heard: no further one is tried.
    void settle();

    /// libmpv has answered a command.
    void replied(const mpv_event &reply);
    /// libmpv has opened a stream.
    void opened();
    /// libmpv has ended a stream. Whether it is the current one, and has not been stopped; unless one is
    /// heard already, the next is tried then.
    bool ended(const mpv_event_end_file &end);

Q_SIGNALS:
    /// There is no stream to play. To be received by a queued connection where this object may be deleted.
    void failed();

private:
    enum class Stage {
        None,      ///< there is none, or it has ended or been given up
        Requested, ///< libmpv has been asked for it, and has not answered yet
        Opening,   ///< libmpv has given it its number
        Opened,    ///< libmpv has recognised its format
    };

    static bool mayFollow(Stage from, Stage to);
    void enter(Stage stage);
    void load(const QUrl &stream);
    void unload();
    void checkMemory();

    MpvHandle &handle_;
    const StreamHeaders headers_;
    const double timeout_;
    /// Null once a stream is heard.
    std::unique_ptr<StreamResolver> resolver_;
    Stage stage_ = Stage::None;
    /// The stream that was loaded last, whatever has become of it.
    QUrl stream_;
    /// The number of the latest request, which its answer carries.
    quint64 request_ = 0;
    /// libmpv's number for the current stream, from Stage::Opening on.
    qint64 entry_ = 0;
    MemoryWatch memory_;
    QTimer memoryTimer_;
};
