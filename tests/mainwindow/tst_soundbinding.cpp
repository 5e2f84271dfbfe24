#include "playback/keypath.h"
#include "support/windowstage.h"
#include "ui/widgets/popover.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QRegularExpression>
#include <QSlider>
#include <QToolButton>
#include <QWheelEvent>
#include <functional>

using namespace Qt::StringLiterals;

namespace {
struct SoundWindow : WindowStage
{
    SoundWindow()
        : WindowStage({}, Start::Next)
        , active(QTest::qWaitForWindowActive(window))
    {
    }

    template <class T = QWidget>
    T *find(const QString &name)
    {
        return window->findChild<T *>(name);
    }
    Popover &popover() { return *find<Popover>(u"audioPopOver"_s); }
    void press(const QString &button) { find<QAbstractButton>(button)->click(); }
    bool play()
    {
        program->session.playback().playRadioFromURL(u"http://h/"_s, u"x"_s);
        const auto players = backend.journal.lines().count(u"player"_s);
        return QTest::qWaitFor([=, this] { return backend.journal.lines().count(u"player"_s) > players; });
    }
    void turnWheel(int eighthsOfDegrees)
    {
        QWidget *button = find(u"audioButton"_s);
        QWheelEvent event(button->rect().center(), button->mapToGlobal(button->rect().center()), {},
                          {0, eighthsOfDegrees}, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(button, &event);
    }

    bool active;
};
} // namespace

class TestSoundBinding : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QFile::remove(StateFile::path());
        QDir().mkpath(QFileInfo(StateFile::path()).path());
    }
    void popoverOpensInsideTheWindow();
    void popoverStaysAndCloses();
    void controlsSetTheSound();
    void windowsRememberTheSound();
    void storedNonsenseIsHarmless_data();
    void storedNonsenseIsHarmless();
    void unwritableFolderCostsALine();
};

void TestSoundBinding::popoverOpensInsideTheWindow()
{
    SoundWindow stage;
    QVERIFY(stage.active);
    QWidget *focus = QApplication::focusWidget();
    for (QWidget *sender : {stage.find(u"audioButton"_s), static_cast<QWidget *>(nullptr)}) {
        for (const QSize &size : {stage.window->size(), stage.window->minimumSize()}) {
            stage.window->resize(size);
            stage.window->player().audioButtonAction(sender);
            QVERIFY(stage.popover().isShown());
            QVERIFY(stage.popover().isAncestorOf(QApplication::focusWidget()));
            QVERIFY(stage.window->rect().contains(stage.popover().geometry()));
            stage.window->player().audioButtonAction(sender);
            QVERIFY(!stage.popover().isShown());
            QCOMPARE(QApplication::focusWidget(), focus);
        }
    }
}

/// Open over a new start and over what happens elsewhere in the window; closed by Esc and every tear-down.
void TestSoundBinding::popoverStaysAndCloses()
{
    SoundWindow stage;
    const std::pair<const char *, std::function<void()>> ends[] = {
        {"Esc", [&] { QTest::keyClick(stage.window, Qt::Key_Escape); }},
        {"stop", [&] { stage.press(u"transportStopButton"_s); }},
        {"time-out", [&] { stage.program->session.playback().timerDone(); }},
        {"full", [&] { stage.backend.player->item().report(KeyPath::playbackBufferFull); }},
        {"lost", [&] { stage.backend.player->item().report(KeyPath::playbackBufferEmpty); }},
    };
    for (const auto &[name, end] : ends) {
        stage.press(u"audioButton"_s);
        QVERIFY(stage.play());
        stage.press(u"transportPlayButton"_s);
        QVERIFY(stage.play());
        QTest::mouseClick(stage.find<RVTableView>(u"myTableView"_s)->viewport(), Qt::LeftButton);
        QVERIFY2(stage.popover().isShown(), name);
        end();
        QVERIFY2(!stage.popover().isShown(), name);
    }
}

void TestSoundBinding::controlsSetTheSound()
{
    SoundWindow stage;
    QVERIFY(stage.active);
    stage.press(u"audioButton"_s);
    QCOMPARE(stage.backend.sound, SoundSettings());
    const auto onSlider = [&](const char *slider, Qt::Key key) {
        return [=, &stage] { QTest::keyClick(stage.find(QLatin1StringView(slider)), key); };
    };
    const auto control = [&](Qt::Key key) {
        return [=, &stage] { QTest::keyClick(stage.window, key, Qt::ControlModifier); };
    };
    const auto wheel = [&](int turn) { return [=, &stage] { stage.turnWheel(turn); }; };
    const auto press = [&](const char *button) {
        return [=, &stage] { stage.press(QLatin1StringView(button)); };
    };
    struct Step
    {
        const char *name;
        std::function<void()> act;
        SoundSettings wanted;
    };
    const Step steps[] = {
        {"louder at the top", control(Qt::Key_Up), {}},
        {"left", onSlider("volumeSlider", Qt::Key_Left), {.volume = 95}},
        {"page down", onSlider("volumeSlider", Qt::Key_PageDown), {.volume = 85}},
        {"softer", control(Qt::Key_Down), {.volume = 80}},
        {"louder", control(Qt::Key_Up), {.volume = 85}},
        {"half a step of the wheel", wheel(60), {.volume = 85}},
        {"the other half", wheel(60), {.volume = 90}},
        {"two steps down", wheel(-240), {.volume = 80}},
        {"mute", control(Qt::Key_M), {.volume = 80, .muted = true}},
        {"mute again", press("muteButton"), {.volume = 80}},
        {"mute by the space bar",
         [&] {
             stage.find(u"muteButton"_s)->setFocus();
             QTest::keyClick(stage.find(u"muteButton"_s), Qt::Key_Space);
         },
         {.volume = 80, .muted = true}},
        {"home, which is heard", onSlider("volumeSlider", Qt::Key_Home), {.volume = 0}},
        {"softer at the bottom", control(Qt::Key_Down), {.volume = 0}},
        {"bass up", onSlider("bassSlider", Qt::Key_Right), {.volume = 0, .bass = 1}},
        {"middle to its end", onSlider("middleSlider", Qt::Key_End), {.volume = 0, .bass = 1, .middle = 12}},
        {"treble to its end",
         onSlider("trebleSlider", Qt::Key_Home),
         {.volume = 0, .bass = 1, .middle = 12, .treble = -12}},
        {"double click",
         [&] {
             QTest::mouseDClick(stage.find(u"trebleSlider"_s), Qt::LeftButton, {}, {1, 1});
         },
         {.volume = 0, .bass = 1, .middle = 12}},
        {"flat", press("flatButton"), {.volume = 0}},
    };
    for (const Step &step : steps) {
        step.act();
        QVERIFY2(stage.backend.sound == step.wanted, step.name);
        QCOMPARE(stage.find<QSlider>(u"volumeSlider"_s)->value(), step.wanted.volume);
        QCOMPARE(stage.find<QAbstractButton>(u"muteButton"_s)->isChecked(), step.wanted.muted);
        QCOMPARE(stage.find<QAction>(u"muteAction"_s)->isChecked(), step.wanted.muted);
    }
}

void TestSoundBinding::windowsRememberTheSound()
{
    const SoundSettings sound{.volume = 45, .muted = true, .bass = 3, .middle = -4, .treble = 12};
    {
        SoundWindow stage;
        stage.press(u"audioButton"_s);
        stage.find<QSlider>(u"volumeSlider"_s)->setValue(sound.volume);
        stage.find<QSlider>(u"bassSlider"_s)->setValue(sound.bass);
        stage.find<QSlider>(u"middleSlider"_s)->setValue(sound.middle);
        stage.find<QSlider>(u"trebleSlider"_s)->setValue(sound.treble);
        stage.press(u"muteButton"_s);
    }
    QVERIFY(QFile::exists(StateFile::path()));
    QCOMPARE(SoundWindow().backend.sound, sound);
    const QSettings settings(QSettings::NativeFormat, QSettings::UserScope, u"plumtide"_s, u"plumtide"_s);
    QCOMPARE(settings.allKeys(), QStringList());
}

void TestSoundBinding::storedNonsenseIsHarmless_data()
{
    QTest::addColumn<QString>("stored");
    QTest::addColumn<int>("volume");
    QTest::addColumn<int>("bass");
    QTest::newRow("nothing") << QString() << 100 << 0;
    QTest::newRow("text") << u"loud"_s << 100 << 0;
    QTest::newRow("a list") << u"1, 2"_s << 100 << 0;
    QTest::newRow("too little") << u"-50"_s << 0 << -12;
    QTest::newRow("too much") << u"101"_s << 100 << 12;
    QTest::newRow("more than an integer") << u"4294967295"_s << 100 << 0;
}

void TestSoundBinding::storedNonsenseIsHarmless()
{
    QFETCH(QString, stored);
    QFETCH(int, volume);
    QFETCH(int, bass);
    if (!stored.isNull()) {
        QFile file(StateFile::path());
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("[sound]\nvolume=" + stored.toUtf8() + "\nbass=" + stored.toUtf8() + "\n");
    }
    QCOMPARE(SoundWindow().backend.sound, (SoundSettings{.volume = volume, .bass = bass}));
}

void TestSoundBinding::unwritableFolderCostsALine()
{
    const QByteArray folder = qgetenv("XDG_STATE_HOME");
    // Below a file there can be no folder, whoever runs this.
    qputenv("XDG_STATE_HOME", QCoreApplication::applicationFilePath().toUtf8());
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"^cannot write .*state.conf$"_s));
    {
        SoundWindow stage;
        stage.press(u"audioButton"_s);
        stage.press(u"muteButton"_s);
    }
    qputenv("XDG_STATE_HOME", folder);
}

QTEST_MAIN(TestSoundBinding)
#include "tst_soundbinding.moc"
