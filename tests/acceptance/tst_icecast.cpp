#include "support/icecast.h"
#include "support/pitch.h"
#include "support/stage.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace {
constexpr int pitch = 600;
} // namespace

/// The program before a stream server that others have written.
class TestIcecast : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void formatsStream_data();
    void formatsStream();
    void soundIsTheMounts();
    void privateMountsAreNotHeard();
    void privateMountsAskForAPassword_data();
    void privateMountsAskForAPassword();
    void endedSourcesArePlayedOut();

private:
    Icecast icecast_;
    OneStationDirectory directory_;
};

void TestIcecast::initTestCase()
{
    QVERIFY(icecast_.isRunning());
    for (const QByteArray mount : {"/tone.mp3", "/tone.ogg", "/tone.aac", Icecast::privateMount}) {
        QVERIFY(icecast_.startSource(mount, pitch));
    }
}

void TestIcecast::formatsStream_data()
{
    QTest::addColumn<QByteArray>("path");
    for (const QByteArray path : {"/tone.mp3", "/tone.ogg", "/tone.aac", "/tone.mp3.m3u"}) {
        QTest::newRow(path.constData()) << path;
    }
}

void TestIcecast::formatsStream()
{
    QFETCH(QByteArray, path);
    directory_.leadTo({icecast_.address(path)});
    Stage stage(directory_.address());
    stage.doubleClick(0);
    QTRY_COMPARE_WITH_TIMEOUT(stage.statuses, Stage::healthyStart, Stage::soundTime);
}

void TestIcecast::soundIsTheMounts()
{
    directory_.leadTo({icecast_.address("/tone.mp3")});
    const QTemporaryDir folder;
    const QString sound = folder.filePath(u"sound.wav"_s);
    Stage stage(directory_.address(), *AudioOutput::fromText(u"pcm:"_s + sound));
    stage.doubleClick(0);
    QTRY_COMPARE_WITH_TIMEOUT(stage.statuses, Stage::healthyStart, Stage::soundTime);
    QTRY_VERIFY_WITH_TIMEOUT(hasPitch(sound, pitch), Stage::soundTime);
}

void TestIcecast::privateMountsAreNotHeard()
{
    directory_.leadTo({icecast_.address(Icecast::privateMount)});
    Stage stage(directory_.address());
    stage.settings.setValue("timeout_value", 5);
    stage.doubleClick(0);
    QTRY_COMPARE_WITH_TIMEOUT(stage.statuses, Stage::failure, Stage::soundTime);
}

void TestIcecast::privateMountsAskForAPassword_data()
{
    QTest::addColumn<QString>("password");
    QTest::addColumn<QStringList>("statuses");
    QTest::newRow("right") << QString::fromLatin1(Icecast::password) << Stage::healthyStart;
    QTest::newRow("wrong") << u"open sesami"_s << Stage::failure;
}

void TestIcecast::privateMountsAskForAPassword()
{
    QFETCH(QString, password);
    Stage stage(directory_.address());
    stage.settings.setValue("timeout_value", 5);
    stage.play(privateStation(QUrl(QString::fromLatin1(icecast_.address("/"))),
                              QString::fromLatin1(Icecast::privateMount), QString::fromLatin1(Icecast::user),
                              password));
    QFETCH(QStringList, statuses);
    QTRY_COMPARE_WITH_TIMEOUT(stage.statuses, statuses, Stage::soundTime);
}

void TestIcecast::endedSourcesArePlayedOut()
{
    directory_.leadTo({icecast_.address("/tone.mp3")});
    Stage stage(directory_.address());
    stage.doubleClick(0);
    QTRY_COMPARE_WITH_TIMEOUT(stage.statuses, Stage::healthyStart, Stage::soundTime);

    int left = -1;
    connect(&stage.backend.heardStream(), &HeardStream::changed, &stage.window,
            [&left](const StreamInfo &info) { left = info.isEmpty() ? left : info.buffered; });
    QVERIFY(icecast_.endSource("/tone.mp3"));
    // The server has nothing more to send; what has come is heard to its end.
    QTRY_COMPARE_WITH_TIMEOUT(stage.statuses, Stage::healthyStart + Stage::soundsEnd, Stage::soundTime);
    QCOMPARE(stage.text(u"playerStatusString"_s), u"idle"_s);
    QVERIFY2(left == 0 || left == 1, qPrintable(QString::number(left)));
}

QTEST_MAIN(TestIcecast)
#include "tst_icecast.moc"
