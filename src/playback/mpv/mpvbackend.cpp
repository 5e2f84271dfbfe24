#include "playback/mpv/mpvbackend.h"

#include "playback/mpv/detachedwork.h"
#include "playback/mpv/listenersound.h"
#include "playback/mpv/mpvhandle.h"
#include "playback/mpv/mpvitem.h"
#include "playback/mpv/mpvlibrary.h"
#include "playback/mpv/mpvplayer.h"
#include "playback/streamresolver.h"

#include <QCoreApplication>
#include <algorithm>
#include <mutex>

/// The library, opened once by whoever comes first. Shared with the thread that preloads, which may outlive
/// the backend.
class MpvBackend::Preload
{
public:
    const MpvLibrary *get()
    {
        std::call_once(once_, [this] { library_ = MpvLibrary::open(); });
        return library_.get();
    }

private:
    std::once_flag once_;
    std::unique_ptr<const MpvLibrary> library_;
};

namespace {
/// How long a new core waits for the one before it to close the sound file.
constexpr std::chrono::milliseconds fileReleaseTime = std::chrono::seconds(2);

/// libmpv takes whole seconds, and 0 for its own default.
QByteArray networkTimeout(double seconds)
{
    constexpr double longest = 24.0 * 60 * 60;
    return QByteArray::number(static_cast<int>(std::clamp(seconds, 1.0, longest)));
}

MpvHandle::Options optionsFor(const AudioOutput &output, const StreamRequest &request)
{
    MpvHandle::Options options = {
        // A core for sound alone, without the user's own configuration of the mpv program, scripts or keys.
        {"config", "no"},
        {"vid", "no"},
        {"sid", "no"},
        {"audio-display", "no"},
        {"terminal", "no"},
        // Would hand the address to another program.
        {"ytdl", "no"},
        {"load-scripts", "no"},
        {"osc", "no"},
        {"load-stats-overlay", "no"},
        {"load-osd-console", "no"},
        {"load-auto-profiles", "no"},
        {"input-default-bindings", "no"},
        {"input-builtin-bindings", "no"},
        {"idle", "yes"},
        // Until the output is open and its level is set.
        {"pause", "yes"},
        // What the tone changes is heard after what the core has queued.
        {"audio-buffer", "0.05"},
        {"audio-client-name", "Plumtide"},
        {"user-agent", StreamResolver::userAgent()},
        {"cache", "yes"},
        // A server that sends no burst gets time to bring a little reserve together.
        {"cache-pause-initial", "yes"},
        {"cache-pause-wait", "1.5"},
        // The end of a stream is when it has been heard, not when it has been queued.
        {"gapless-audio", "no"},
        // Sound formats only: none that reads further files or addresses.
        {"demuxer", "lavf"},
        {"demuxer-lavf-o", "format_whitelist=\"aac,ac3,asf,flac,loas,matroska,mov,mp3,mpegts,ogg,wav,webm\""},
        {"access-references", "no"},
        // Content types are often wrong; a lower score than the usual one lets the data speak.
        {"demuxer-lavf-probescore", "10"},
        {"demuxer-max-bytes", QByteArray::number(MpvItem::playingBufferBytes)},
        // libmpv keeps a title along with the sound before it: without any, one that waits to be heard is
        // forgotten when the next arrives.
        {"demuxer-max-back-bytes", "256KiB"},
        {"demuxer-donate-buffer", "no"},
        {"network-timeout", networkTimeout(request.timeout)},
        // A redirect would take the request's headers to another host.
        {"stream-lavf-o", "reconnect_streamed=1,reconnect_delay_max=8,max_redirects=0"},
    };
    if (output.isAutomatic()) {
        // PipeWire is spoken to as PulseAudio is, where it can be. The sound server's queue of half a second
        // costs a third of the processor time of the usual one. It rests, and changes its level, without a
        // delay.
        options.insert(
            options.end(),
            {{"ao", "pulse,pipewire,alsa"}, {"pulse-buffer", "500"}, {"audio-fallback-to-null", "yes"}});
    } else if (output.isFile()) {
        // The file takes sound faster than it comes; waiting for more would look like a lost connection.
        options.insert(options.end(), {{"ao", "pcm"},
                                       {"ao-pcm-file", output.file().toLocal8Bit()},
                                       {"audio-format", "s16"},
                                       {"cache-pause", "no"}});
    } else {
        options.push_back({"ao", "null"});
    }
    return options;
}
} // namespace

MpvBackend::MpvBackend(AudioOutput output, qint64 pausedBufferBytes)
    : output_(std::move(output))
    , sound_(std::make_shared<ListenerSound>())
    , heard_(std::make_shared<HeardStream>())
    , conditions_{sound_, heard_, pausedBufferBytes, !output_.isFile(), output_.isAutomatic()}
    , library_(std::make_shared<Preload>())
    , detached_(std::make_shared<DetachedWork>())
{
}

MpvBackend::~MpvBackend() = default;

void MpvBackend::preload()
{
    DetachedWork::run(detached_, [library = library_] { library->get(); });
}

std::shared_ptr<BackendItem> MpvBackend::makeItem(const StreamRequest &request)
{
    std::unique_ptr<MpvHandle> handle;
    if (const MpvLibrary *library = library_->get()) {
        if (output_.isFile()) {
            detached_->waitForNone(fileReleaseTime);
        }
        handle = MpvHandle::create(*library, detached_, optionsFor(output_, request));
    }
    auto *item = new MpvItem(request, conditions_, std::move(handle));
    item->moveToThread(QCoreApplication::instance()->thread());
    return {item, [](MpvItem *released) { released->deleteLater(); }};
}

std::shared_ptr<BackendPlayer> MpvBackend::makePlayer(const std::shared_ptr<BackendItem> &item)
{
    return std::make_shared<MpvPlayer>(std::static_pointer_cast<MpvItem>(item));
}

void MpvBackend::setSound(const SoundSettings &settings)
{
    sound_->setSettings(settings);
}

bool MpvBackend::waitForDetachedWork(std::chrono::milliseconds time)
{
    return detached_->waitForNone(time);
}
