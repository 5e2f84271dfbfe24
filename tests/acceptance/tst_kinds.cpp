#include "support/localradio.h"
#include "support/pitch.h"
#include "support/scriptedserver.h"
#include "support/stage.h"

#include <QFile>
#include <QSslCertificate>
#include <QSslKey>
#include <QTest>
#include <memory>
#include <optional>

using namespace Qt::StringLiterals;

/// Every kind of sound that stations send, in the clear and encrypted, by every road that leads to it: heard
/// at its pitch.
class TestKinds : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void kindsAreHeard_data();
    void kindsAreHeard();
    void roadsLeadToSound_data();
    void roadsLeadToSound();
    void cleanupTestCase() { stage_.reset(); }

private:
    QString write(const QString &name, const QByteArray &content) const;
    void hear(const QString &address, double pitch);

    QTemporaryDir folder_;
    std::optional<LocalRadio> radio_;
    QString sound_ = folder_.filePath(u"sound.wav"_s);
    std::unique_ptr<Stage> stage_;
};

void TestKinds::initTestCase()
{
    const QSslConfiguration tls = ScriptedServer::makeCertificate();
    QVERIFY(!tls.isNull());
    const QString certificate = write(u"certificate"_s, tls.localCertificate().toPem());
    qputenv("SSL_CERT_FILE", QFile::encodeName(certificate));
    radio_.emplace(QStringList{u"--tls-certificate"_s, certificate, u"--tls-key"_s,
                               write(u"key"_s, tls.privateKey().toPem())});
    QVERIFY(radio_->isRunning() && !radio_->encryptedAddress().isEmpty());
    stage_ = std::make_unique<Stage>(radio_->address(), *AudioOutput::fromText(u"pcm:"_s + sound_));
}

/// The whole name of the file.
QString TestKinds::write(const QString &name, const QByteArray &content) const
{
    QFile file(folder_.filePath(name));
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size() ? file.fileName()
                                                                                    : QString();
}

void TestKinds::hear(const QString &address, double pitch)
{
    stage_->statuses.clear();
    // What is in it is another station's; the file takes sound as fast as it comes, and some of that has an
    // end.
    QFile::remove(sound_);
    stage_->playback.playRadioFromURL(address, address);
    QTRY_VERIFY2_WITH_TIMEOUT(hasPitch(sound_, pitch), qPrintable(QString::number(strongestPitch(sound_))),
                              Stage::soundTime);
    QVERIFY(!stage_->statuses.contains(Stage::failure.at(1)));
}

void TestKinds::kindsAreHeard_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<double>("pitch");
    const QJsonArray kinds = radio_->kinds();
    QVERIFY(!kinds.isEmpty());
    for (const QString &server : {radio_->address(), radio_->encryptedAddress()}) {
        for (const auto &kind : kinds) {
            const QString scheme = server.section(u':', 0, 0);
            QTest::newRow(qPrintable(kind["name"_L1].toString() + u" by "_s + scheme))
                << QString(server + kind["path"_L1].toString()) << kind["pitch"_L1].toDouble();
        }
    }
}

void TestKinds::kindsAreHeard()
{
    QFETCH(QString, address);
    QFETCH(double, pitch);
    hear(address, pitch);
}

void TestKinds::roadsLeadToSound_data()
{
    QTest::addColumn<QString>("road");
    const auto list = [](const char *entry) { return u"LIST"_s + QString::fromLatin1(entry); };
    QTest::newRow("pls") << u"RADIO/playlist?entry=SOUND"_s;
    QTest::newRow("m3u") << u"RADIO/playlist?form=m3u&entry=SOUND"_s;
    QTest::newRow("quoted") << list("[playlist]\nFile1=\"SOUND\"\n");
    QTest::newRow("reference") << list("[Reference]\nRef1=SOUND\n");
    QTest::newRow("ASX") << list("<ASX version='3'><Entry><REF HREF='SOUND'></Entry></ASX>");
    QTest::newRow("XSPF") << list("<?xml version='1.0'?><playlist xmlns='http://xspf.org/ns/0/'><trackList>"
                                  "<track><location>SOUND</location></track></trackList></playlist>");
    QTest::newRow("relative") << list("# A station\n/relative\n");
    QTest::newRow("HLS in a playlist") << list("RADIO/hls/high.m3u8\n");
    QTest::newRow("redirect") << u"SOUND?redirect=SOUND"_s;
    QTest::newRow("redirect with a token that holds once") << u"SOUND?token=required"_s;
    QTest::newRow("redirect with a cookie") << u"SOUND?cookie=required"_s;
    QTest::newRow("playlist, redirect with a token") << list("SOUND?token=required\n");
    QTest::newRow("playlist, redirect with a cookie") << list("SOUND?cookie=required\n");
    QTest::newRow("redirect from the clear to the encrypted") << u"SOUND?redirect=tls"_s;
    QTest::newRow("pls by https") << u"TLS/playlist?entry=SOUND"_s;
    QTest::newRow("redirect with a token by https") << u"HEARD?token=required"_s;
    QTest::newRow("redirect with a cookie by https") << u"HEARD?cookie=required"_s;
    QTest::newRow("pls, redirect with a token by https") << list("[playlist]\nFile1=HEARD?token=required\n");
    QTest::newRow("HLS in a playlist by https") << list("TLS/hls/high.m3u8\n");
}

void TestKinds::roadsLeadToSound()
{
    QFETCH(QString, road);
    const QJsonObject station = radio_->stations().at(0).toObject();
    const auto inFull = [this](QString text) {
        const QString path = QUrl(radio_->stream(0)).path();
        return text.replace(u"SOUND"_s, radio_->stream(0))
            .replace(u"HEARD"_s, radio_->encryptedAddress() + path)
            .replace(u"RADIO"_s, radio_->address())
            .replace(u"TLS"_s, radio_->encryptedAddress());
    };
    ScriptedServer server;
    server.script("/relative", "HTTP/1.0 302 x\r\nLocation: " + radio_->stream(0).toLatin1() + "\r\n\r\n");
    if (road.startsWith(u"LIST")) {
        server.scriptBody("/list", inFull(road.mid(4)).toLatin1());
        road = server.address(u"/list"_s);
    }
    const bool isSegmented = QByteArrayView(QTest::currentDataTag()).startsWith("HLS");
    constexpr double segmentsPitch = 830.66;
    hear(inFull(road), isSegmented ? segmentsPitch : station["pitch"_L1].toDouble());
}

QTEST_MAIN(TestKinds)
#include "tst_kinds.moc"
