#include "desktop/desktoplook.h"
#include "desktop/sessionbus.h"
#include "desktop/shell.h"
#include "settings/statefile.h"

#include <QApplication>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDBusVariant>
#include <QFile>
#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {
/// A desktop's place for tray icons, as the session bus sees it.
class FakeTray : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
    Q_PROPERTY(bool IsStatusNotifierHostRegistered READ isHostRegistered)

public:
    bool isHostRegistered() const { return hostRegistered; }

    bool hostRegistered = false;

Q_SIGNALS:
    void StatusNotifierHostRegistered();
    void StatusNotifierHostUnregistered();
};

/// A desktop's answer to whether its user wants light or dark.
class FakePortal : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")

public Q_SLOTS:
    QDBusVariant Read(const QString &group, const QString &key)
    {
        asked = group + u' ' + key;
        return QDBusVariant(QVariant::fromValue(QDBusVariant(DesktopLook::PreferDark)));
    }

Q_SIGNALS:
    void SettingChanged(const QString &group, const QString &key, const QDBusVariant &value);

public:
    QString asked;
};

/// The connection of another program.
QDBusConnection otherConnection()
{
    return QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"other"_s);
}
} // namespace

class TestShell : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void closing_data();
    void closing();
    void toolTips_data();
    void toolTips();
    void activations_data();
    void activations();
    void busesThatDoNotAnswer();
    void reachedOverTheBus();
    void trayHosts();
    void lookFollowsTheDesktop();
    void delegateShowsTheWindow();

private:
    QProcess bus_;
    QByteArray address_;
};

void TestShell::initTestCase()
{
    bus_.start(u"dbus-daemon"_s, {u"--session"_s, u"--nofork"_s, u"--print-address"_s});
    QTRY_VERIFY(bus_.canReadLine());
    address_ = bus_.readLine().trimmed();
    qputenv("DBUS_SESSION_BUS_ADDRESS", address_);
}

void TestShell::cleanupTestCase()
{
    bus_.kill();
    bus_.waitForFinished();
}

void TestShell::closing_data()
{
    QTest::addColumn<bool>("isEnding");
    QTest::addColumn<bool>("isReachable");
    QTest::addColumn<bool>("hasTrayIcon");
    QTest::addColumn<bool>("hides");
    QTest::newRow("nothing brings it back") << false << false << false << false;
    QTest::newRow("another start") << false << true << false << true;
    QTest::newRow("the tray") << false << false << true << true;
    QTest::newRow("the end") << true << false << false << true;
}

void TestShell::closing()
{
    QFETCH(bool, isEnding);
    QFETCH(bool, isReachable);
    QFETCH(bool, hasTrayIcon);
    QFETCH(bool, hides);
    QCOMPARE(Shell::closing(isEnding, isReachable, hasTrayIcon) == MainWindow::Closing::Hides, hides);
}

void TestShell::toolTips_data()
{
    QTest::addColumn<QString>("station");
    QTest::addColumn<PlaybackState>("state");
    QTest::addColumn<QString>("toolTip");
    QTest::newRow("running") << u"Ava & Co"_s << PlaybackState::Playing << u"Ava & Co"_s;
    QTest::newRow("paused") << u"Ava"_s << PlaybackState::Paused << u"Plumtide"_s;
    QTest::newRow("connecting") << u"Ava"_s << PlaybackState::Connecting << u"Ava"_s;
    QTest::newRow("stopped") << QString() << PlaybackState::Stopped << u"Plumtide"_s;
    QTest::newRow("failed") << u"Ava"_s << PlaybackState::Failed << u"Plumtide"_s;
    QTest::newRow("no name") << QString() << PlaybackState::Playing << u"Plumtide"_s;
    QTest::newRow("hostile") << u"<b>a b</b>"_s << PlaybackState::Playing << u"‹b›a b‹/b›"_s;
}

void TestShell::toolTips()
{
    QFETCH(QString, station);
    QFETCH(PlaybackState, state);
    QTEST(TrayIcon::toolTip({.state = state, .station = station}), "toolTip");
}

void TestShell::activations_data()
{
    QTest::addColumn<QVariant>("sent");
    QTest::addColumn<QByteArray>("startupId");
    QTest::addColumn<uint>("time");
    QTest::newRow("with a time") << QVariant(u"a_TIME1_TIME42"_s) << "a_TIME1_TIME42"_ba << 42U;
    QTest::newRow("without") << QVariant(u"a"_s) << "a"_ba << 0U;
    QTest::newRow("no number") << QVariant(u"a_TIMEx"_s) << "a_TIMEx"_ba << 0U;
    QTest::newRow("none") << QVariant() << QByteArray() << 0U;
    QTest::newRow("a list") << QVariant(QVariantList{1, 2}) << QByteArray() << 0U;
    QTest::newRow("control characters") << QVariant(u"a\nb_TIME42"_s) << QByteArray() << 0U;
    QTest::newRow("endless") << QVariant(QString(100'000, u'a')) << QByteArray() << 0U;
}

void TestShell::activations()
{
    QFETCH(QVariant, sent);
    QFETCH(QByteArray, startupId);
    const auto activation = Activation::fromPlatformData(
        {{u"desktop-startup-id"_s, sent}, {u"activation-token"_s, u"t"_s}, {u"other"_s, 1}});
    QCOMPARE(activation.startupId, startupId);
    QCOMPARE(activation.token, "t"_ba);
    QTEST(activation.startupTime(), "time");
    QCOMPARE(activation.platformData().size(), startupId.isEmpty() ? 1 : 2);
}

void TestShell::busesThatDoNotAnswer()
{
    using namespace std::chrono_literals;
    QVERIFY(SessionBus::answers(address_, 10s));
    QVERIFY(SessionBus::answers("unix:path=/nowhere/at%20all;" + address_, 10s));
    QVERIFY(SessionBus::answers("tcp:host=127.0.0.1,port=1", 0s));
    QVERIFY(!SessionBus::answers("unix:path=/nowhere/at%20all", 10s));
    QVERIFY(!SessionBus::answers("unix:path=/" + QByteArray(200, 'a'), 10s));

    const QTemporaryDir folder;
    sockaddr_un name = {};
    name.sun_family = AF_UNIX;
    const QByteArray path = folder.filePath(u"silent"_s).toUtf8();
    std::copy(path.begin(), path.end(), name.sun_path);
    const int silent = ::socket(AF_UNIX, SOCK_STREAM, 0);
    QCOMPARE(::bind(silent, reinterpret_cast<const sockaddr *>(&name), sizeof name), 0);
    QCOMPARE(::listen(silent, 1), 0);
    QVERIFY(!SessionBus::answers("unix:path=" + path, 50ms));
    ::close(silent);
}

void TestShell::reachedOverTheBus()
{
    const QString name = u"com.ostrel.plumtide"_s;
    QDBusConnection other = otherConnection();
    const auto call = [&](const QString &method, const QVariantList &arguments) {
        auto message = QDBusMessage::createMethodCall(name, u"/com/ostrel/plumtide"_s,
                                                      u"org.freedesktop.Application"_s, method);
        message.setArguments(arguments);
        return other.asyncCall(message);
    };
    {
        SingleInstance instance;
        QVERIFY(!instance.isReachable());
        QVERIFY(instance.tell(RemoteCommand::Stop) == SingleInstance::Outcome::NotRunning);
        QVERIFY(instance.begin() == SingleInstance::Outcome::Run);
        QVERIFY(instance.isReachable());

        int activated = 0;
        QByteArray startupId;
        QList<RemoteCommand> commands;
        connect(&instance, &SingleInstance::activated, this, [&](const Activation &activation) {
            ++activated;
            startupId = activation.startupId;
        });
        connect(&instance, &SingleInstance::commanded, this,
                [&](RemoteCommand command) { commands.append(command); });
        const QVariantMap data{{u"desktop-startup-id"_s, u"id"_s}};
        call(u"Activate"_s, {data});
        QTRY_COMPARE(activated, 1);
        QCOMPARE(startupId, "id"_ba);
        call(u"Open"_s, {QStringList{u"file:///x"_s}, QVariantMap()});
        QTRY_COMPARE(activated, 2);
        for (const QString &action : {u"stop"_s, u"explode"_s, u"play-pause"_s, u"quit"_s}) {
            call(u"ActivateAction"_s, {action, QVariantList(), QVariantMap()});
        }
        QTRY_COMPARE(commands.size(), 3);
        QVERIFY((commands == QList{RemoteCommand::Stop, RemoteCommand::PlayPause, RemoteCommand::Quit}));
    }
    // The name is free again. A program that owns it without our interface does not answer.
    QTRY_VERIFY(other.registerService(name));
    SingleInstance second;
    QVERIFY(second.begin() == SingleInstance::Outcome::Unanswered);
    QVERIFY(!second.isReachable());
    QVERIFY(other.unregisterService(name));
}

void TestShell::trayHosts()
{
    const QString name = u"org.kde.StatusNotifierWatcher"_s;
    TrayHost none(QDBusConnection(u"nowhere"_s));
    QSignalSpy noneChanged(&none, &TrayHost::changed);
    QTRY_COMPARE(noneChanged.size(), 1);
    QVERIFY(!none.has(TrayHost::Kind::StatusNotifier));

    TrayHost host(QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"asking"_s));
    QSignalSpy changed(&host, &TrayHost::changed);
    QTRY_COMPARE(changed.size(), 1);
    QVERIFY(!host.has(TrayHost::Kind::StatusNotifier));

    FakeTray tray;
    QDBusConnection other = otherConnection();
    const auto contents = QDBusConnection::ExportAllProperties | QDBusConnection::ExportAllSignals;
    QVERIFY(other.registerObject(u"/StatusNotifierWatcher"_s, &tray, contents));
    QVERIFY(other.registerService(name));
    QTRY_COMPARE(changed.size(), 2);
    QVERIFY(!host.has(TrayHost::Kind::StatusNotifier));
    tray.hostRegistered = true;
    Q_EMIT tray.StatusNotifierHostRegistered();
    QTRY_VERIFY(host.has(TrayHost::Kind::StatusNotifier));
    QCOMPARE(changed.last().first().value<TrayHost::Kind>(), TrayHost::Kind::StatusNotifier);
    tray.hostRegistered = false;
    Q_EMIT tray.StatusNotifierHostUnregistered();
    QTRY_VERIFY(!host.has(TrayHost::Kind::StatusNotifier));
    tray.hostRegistered = true;
    Q_EMIT tray.StatusNotifierHostRegistered();
    QTRY_VERIFY(host.has(TrayHost::Kind::StatusNotifier));
    other.unregisterService(name);
    QTRY_VERIFY(!host.has(TrayHost::Kind::StatusNotifier));
}

void TestShell::lookFollowsTheDesktop()
{
    const QString group = u"org.freedesktop.appearance"_s;
    const auto isDark = [] { return ::isDark(QApplication::palette()); };
    FakePortal portal;
    QDBusConnection other = otherConnection();
    QVERIFY(other.registerObject(u"/org/freedesktop/portal/desktop"_s, &portal,
                                 QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllSignals));
    QVERIFY(other.registerService(u"org.freedesktop.portal.Desktop"_s));
    QFile::remove(StateFile::path());
    {
        StateFile state;
        DesktopLook look(*qApp, state);
        QVERIFY(!isDark());
        look.watchDesktop(QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"looking"_s));
        QTRY_VERIFY(isDark());
        QCOMPARE(portal.asked, group + u" color-scheme"_s);

        look.setAppearance(Appearance::Light);
        QVERIFY(!isDark());
        look.setAppearance(Appearance::Desktop);
        QVERIFY(isDark());
    }
    // The next start begins dark, until it turns out that this desktop has no portal.
    applyLook(*qApp);
    {
        StateFile state;
        DesktopLook look(*qApp, state);
        QVERIFY(isDark());
        look.watchDesktop(QDBusConnection(u"nowhere"_s));
        QVERIFY(!isDark());
    }
    StateFile state;
    DesktopLook look(*qApp, state);
    look.watchDesktop(QDBusConnection(u"looking"_s));
    QTRY_VERIFY(isDark());
    // Sent again on each attempt, because the bus may not have the subscription yet.
    const auto tell = [&portal, &group](const QString &key) {
        Q_EMIT portal.SettingChanged(group, key, QDBusVariant(DesktopLook::PreferLight));
        return true;
    };
    QTRY_VERIFY(tell(u"color-scheme"_s) && !isDark());
}

void TestShell::delegateShowsTheWindow()
{
    auto window = std::make_unique<QWidget>();
    AppDelegate delegate(window.get());
    for (const bool hasVisibleWindows : {false, true}) {
        QVERIFY(delegate.applicationShouldHandleReopen(hasVisibleWindows));
        QTRY_VERIFY(window->isActiveWindow());
    }
    window->showMinimized();
    delegate.showWindow();
    QVERIFY(window->isVisible() && !window->isMinimized());
    window.reset();
    QVERIFY(delegate.window() == nullptr);
    delegate.showWindow();
}

QTEST_MAIN(TestShell)
#include "tst_shell.moc"
