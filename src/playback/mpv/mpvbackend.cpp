#include "playback/mpv/mpvbackend.h"

#include "playback/mpv/detachedwork.h"
#include "playback/mpv/listenersound.h"
#include "playback/mpv/mpvcores.h"
#include "playback/mpv/mpvitem.h"
#include "playback/mpv/mpvplayer.h"

#include <QCoreApplication>
#include <utility>

namespace {
/// How long a new core waits for the one before it to close the sound file.
constexpr std::chrono::milliseconds fileReleaseTime = std::chrono::seconds(2);

/// How long nothing has played when the core for the next start is made: the last one is being torn down
/// before that, and a user who changes stations has started another.
constexpr std::chrono::milliseconds preparationDelay = std::chrono::seconds(1);

/// The containers that stations send sound in: none that reads further files or addresses.
constexpr QByteArrayView formats("aac,ac3,asf,eac3,flac,loas,matroska,mov,mp3,mpegts,ogg,wav");

/// What is in them. Everything else, pictures and subtitles above all, finds no decoder.
constexpr QByteArrayView
    decoders("mp1,mp1float,mp2,mp2float,mp3,mp3float,aac,aac_latm,ac3,eac3,alac,flac,opus,"
             "vorbis,speex,wmav1,wmav2,wmapro,pcm_alaw,pcm_f32le,pcm_mulaw,pcm_s16be,"
             "pcm_s16le,pcm_s24le,pcm_s32le,pcm_u8");

QByteArray whitelist(QByteArrayView option, QByteArrayView names)
{
    return option.toByteArray() + "=\"" + names.toByteArray() + '"';
}

MpvHandle::Options optionsFor(const AudioOutput &output)
{
    const QByteArray decoderWhitelist = whitelist("codec_whitelist", decoders);
    MpvHandle::Options options = {
        // A core for sound alone, without the user's own configuration of the mpv program, scripts or keys.
        {"config", "no"},
        {"vid", "no"},
        {"sid", "no"},
        {"audio-display", "no"},
        {"terminal", "no"},
        {"load-scripts", "no"},
        {"input-default-bindings", "no"},
        {"input-builtin-bindings", "no"},
        {"idle", "yes"},
        // Until the output is open and its level is set.
        {"pause", "yes"},
        // What the tone changes is heard after what the core has queued.
        {"audio-buffer",
         QByteArray::number(std::chrono::duration<double>(MpvConditions::readySound).count())},
        {"audio-client-name", "Plumtide"},
        // What the sound server shows beside that: usually the file's name, and so the address.
        {"title", "Plumtide"},
        {"cache", "yes"},
        // A server that sends no burst gets time to bring a little reserve together.
        {"cache-pause-initial", "yes"},
        {"cache-pause-wait", "1.5"},
        // The end of a stream is when it has been heard, not when it has been queued.
        {"gapless-audio", "no"},
        // Sound alone, also where a format is found out, which decodes its beginning.
        {"demuxer", "lavf"},
        {"demuxer-lavf-o", whitelist("format_whitelist", formats) + ',' + decoderWhitelist},
        {"ad-lavc-o", decoderWhitelist},
        {"access-references", "no"},
        // Content types are often wrong; a lower score than the usual one lets the data speak.
        {"demuxer-lavf-probescore", "10"},
        {"demuxer-max-bytes", QByteArray::number(MpvConditions::playingBufferBytes)},
        // libmpv keeps a title along with the sound before it: without any, one that waits to be heard is
        // forgotten when the next arrives.
        {"demuxer-max-back-bytes", "256KiB"},
        {"demuxer-donate-buffer", "no"},
    };
    if (output.isAutomatic()) {
        // PipeWire is spoken to as PulseAudio is, where it can be. The long queue there
        // costs a third of the processor time of the usual one. It rests, and changes its level, without a
        // delay.
        options.insert(options.end(),
                       {{"ao", "pulse,pipewire,alsa"},
                        {"pulse-buffer", QByteArray::number(MpvConditions::serverQueue.count())},
                        {"audio-fallback-to-null", "yes"}});
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
    , detached_(std::make_shared<DetachedWork>())
    , cores_(std::make_shared<MpvCores>(detached_, optionsFor(output_)))
{
    preparation_.setSingleShot(true);
    preparation_.setInterval(preparationDelay);
    QObject::connect(&preparation_, &QTimer::timeout, &preparation_, [this] { preload(); });
}

MpvBackend::~MpvBackend() = default;

void MpvBackend::preload()
{
    DetachedWork::run(detached_, [cores = cores_] { cores->prepare(); });
}

std::shared_ptr<BackendItem> MpvBackend::makeItem(const StreamRequest &request)
{
    if (output_.isFile()) {
        detached_->waitForNone(fileReleaseTime);
    }
    auto *item = new MpvItem(request, conditions_, cores_->take());
    item->moveToThread(QCoreApplication::instance()->thread());
    return {item, [](MpvItem *released) { released->deleteLater(); }};
}

std::shared_ptr<BackendPlayer> MpvBackend::makePlayer(const std::shared_ptr<BackendItem> &item)
{
    // A core takes a megabyte, which is spared while something plays.
    preparation_.stop();
    return {new MpvPlayer(std::static_pointer_cast<MpvItem>(item)), [this](MpvPlayer *released) {
                delete released;
                preparation_.start();
            }};
}

void MpvBackend::setSound(const SoundSettings &settings)
{
    sound_->setSettings(settings);
}

bool MpvBackend::waitForDetachedWork(std::chrono::milliseconds time)
{
    preparation_.stop();
    cores_->close();
    return detached_->waitForNone(time);
}
