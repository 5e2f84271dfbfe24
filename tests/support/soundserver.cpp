#include "support/soundserver.h"

#include <QDeadlineTimer>
#include <QLocalSocket>
#include <QTest>
#include <algorithm>

using namespace Qt::StringLiterals;

namespace {
constexpr int serverTime = 10'000;
constexpr int answerTime = 20;
constexpr qsizetype bytesPerSample = 2;
constexpr double fullScale = 32768;
} // namespace

SoundServer::SoundServer()
    : socket_(folder_.filePath(u"socket"_s))
{
    qputenv("PULSE_SERVER", "unix:" + socket_.toUtf8());
    // Nothing that the user has set up for sound, nor the user's own server.
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"HOME"_s, folder_.path());
    environment.insert(u"XDG_RUNTIME_DIR"_s, folder_.path());
    environment.remove(u"XDG_CONFIG_HOME"_s);
    process_.setProcessEnvironment(environment);
    process_.setStandardErrorFile(folder_.filePath(u"log"_s));
    start();
}

SoundServer::~SoundServer()
{
    end();
}

void SoundServer::end()
{
    process_.kill();
    process_.waitForFinished(serverTime);
}

void SoundServer::start()
{
    process_.start(u"pulseaudio"_s,
                   {u"-n"_s, u"--exit-idle-time=-1"_s, u"--daemonize=no"_s, u"--use-pid-file=no"_s, u"-L"_s,
                    u"module-null-sink sink_name=radio rate=%1"_s.arg(SoundRecorder::sampleRate), u"-L"_s,
                    u"module-native-protocol-unix auth-anonymous=1 socket="_s + socket_});
    process_.waitForStarted(serverTime);
    QLocalSocket client;
    const QDeadlineTimer deadline(serverTime);
    do {
        client.connectToServer(socket_);
    } while (!client.waitForConnected() && !process_.waitForFinished(answerTime) && isRunning() &&
             !deadline.hasExpired());
}

SoundRecorder::SoundRecorder()
{
    process_.start(u"parec"_s, {u"-d"_s, u"radio.monitor"_s, u"--raw"_s, u"--format=s16le"_s,
                                u"--channels=1"_s, u"--rate=%1"_s.arg(sampleRate), u"--latency-msec=20"_s});
    process_.waitForReadyRead(serverTime);
}

SoundRecorder::~SoundRecorder()
{
    process_.kill();
    process_.waitForFinished(serverTime);
}

qsizetype SoundRecorder::size()
{
    bytes_ += process_.readAllStandardOutput();
    return bytes_.size() / bytesPerSample;
}

std::vector<double> SoundRecorder::samples(qsizetype begin, qsizetype count)
{
    const qsizetype available = size() - begin;
    std::vector<double> samples(static_cast<std::size_t>(count < 0 ? available : std::min(count, available)));
    const auto *bytes = reinterpret_cast<const uchar *>(bytes_.constData()) + begin * bytesPerSample;
    for (double &sample : samples) {
        sample = static_cast<qint16>(bytes[0] | bytes[1] << 8) / fullScale;
        bytes += bytesPerSample;
    }
    return samples;
}

std::vector<double> SoundRecorder::last(qsizetype count)
{
    return samples(std::max<qsizetype>(0, size() - count));
}

std::vector<double> SoundRecorder::next(qsizetype count)
{
    const qsizetype begin = size();
    // The player that is recorded needs its events meanwhile.
    const bool came = QTest::qWaitFor([this, begin, count] { return size() >= begin + count; }, serverTime);
    return came ? samples(begin, count) : std::vector<double>();
}
