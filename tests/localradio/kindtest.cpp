#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QStandardPaths>
#include <QTest>

#include <array>
#include <cmath>
#include <complex>
#include <numbers>
#include <span>

namespace {

constexpr int sampleRate = 16000;

/// How strong `frequency` is in `samples`.
double strength(std::span<const qint16> samples, double frequency)
{
    std::complex<double> sum;
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const double phase = 2.0 * std::numbers::pi * frequency * static_cast<double>(i) / sampleRate;
        sum += std::polar(static_cast<double>(samples[i]), phase);
    }
    return std::abs(sum) / static_cast<double>(samples.size());
}

} // namespace

/// Every kind of sound that the program lists, as another decoder hears it.
class KindTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        program_.start(QStringLiteral(LOCALRADIO_PROGRAM), {QStringLiteral("--burst"), QStringLiteral("60")});
        QVERIFY(program_.waitForReadyRead());
        origin_ = QString::fromUtf8(program_.readLine()).section(u' ', -1).trimmed().chopped(1);
    }

    void cleanupTestCase()
    {
        program_.kill();
        program_.waitForFinished();
    }

    void soundsAsListed_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<double>("pitch");
        QProcess program;
        program.start(QStringLiteral(LOCALRADIO_PROGRAM), {QStringLiteral("--list-kinds")});
        QVERIFY(program.waitForFinished());
        const auto kinds = QJsonDocument::fromJson(program.readAllStandardOutput()).array();
        for (const auto &kind : kinds) {
            QTest::newRow(qPrintable(kind[QStringLiteral("name")].toString()))
                << kind[QStringLiteral("path")].toString() << kind[QStringLiteral("pitch")].toDouble();
        }
        QVERIFY(kinds.size() > 40);
    }

    /// Over the seam between two turns, and without a gap there. An HLS list has one seam at the start of the
    /// program, and is played from its first segment.
    void soundsAsListed()
    {
        QFETCH(QString, path);
        QFETCH(double, pitch);
        const bool hls = path.startsWith(u"/hls/");
        const int seconds = hls ? 10 : 34;
        QStringList arguments = QStringLiteral("-v quiet -nostdin").split(u' ');
        if (hls) {
            arguments << QStringLiteral("-t") << QString::number(seconds)
                      << QStringLiteral("-live_start_index") << QStringLiteral("0");
        } else {
            path += QStringLiteral("?close-after=0&after=%1").arg(seconds);
        }
        arguments << QStringLiteral("-i") << origin_ + path;
        if (path.contains(u"/master") && !path.contains(u"variants=")) {
            arguments << QStringLiteral("-map") << QStringLiteral("0:p:1:0"); // the best, not the first
        }
        arguments << QStringLiteral("-ar 16000 -ac 1 -f s16le pipe:1").split(u' ');
        QProcess decoder;
        decoder.start(QStringLiteral("ffmpeg"), arguments);
        QVERIFY(decoder.waitForFinished());
        const QByteArray sound = decoder.readAllStandardOutput();
        const std::span samples(reinterpret_cast<const qint16 *>(sound.constData()),
                                static_cast<std::size_t>(sound.size()) / 2);
        // FFmpeg 5.1 takes FLAC of another rate than the first link's for longer than it is.
        QCOMPARE_GE(samples.size(), static_cast<std::size_t>(seconds * sampleRate / 2));

        constexpr std::size_t window = sampleRate / 4;
        for (std::size_t at = window; at + window <= samples.size(); at += window) {
            const auto part = samples.subspan(at, window);
            const double expected = strength(part, pitch);
            QVERIFY2(expected > 1000 && expected > strength(part, pitch * 1.06) &&
                         expected > strength(part, pitch / 1.06),
                     qPrintable(QStringLiteral("at %1 s").arg(static_cast<double>(at) / sampleRate)));
        }
    }

private:
    QProcess program_;
    QString origin_;
};

QTEST_GUILESS_MAIN(KindTest)
#include "kindtest.moc"
