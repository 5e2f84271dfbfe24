#include "app/commandline.h"
#include "app/environment.h"
#include "app/translations.h"
#include "desktop/desktoplook.h"

#include <QProcess>
#include <QTest>

using namespace Qt::StringLiterals;

class TestApp : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void environment_data();
    void environment();
    void environmentDefaults();
    void commandLine_data();
    void commandLine();
    void languageIsTheFirstThatShips();
    void lookFollowsChoiceThenDesktop();
    void logLinesAreBareUnlessAPatternIsSet();
};

void TestApp::environment_data()
{
    QTest::addColumn<QString>("variable");
    QTest::addColumn<QString>("value");
    QTest::addColumn<bool>("usable");
    const QString directory = u"PLUMTIDE_DIRECTORY_URL"_s;
    const QString tuneIn = u"PLUMTIDE_TUNEIN_URL"_s;
    const QString output = u"PLUMTIDE_AUDIO_OUTPUT"_s;
    QTest::newRow("address") << directory << u"http://127.0.0.1:8000/"_s << true;
    QTest::newRow("https") << tuneIn << u"https://radio.example/api"_s << true;
    QTest::newRow("no scheme") << directory << u"127.0.0.1:8000/"_s << false;
    QTest::newRow("file") << tuneIn << u"file:///etc/passwd"_s << false;
    QTest::newRow("no host") << directory << u"http://"_s << false;
    QTest::newRow("query") << directory << u"http://h/?x="_s << false;
    QTest::newRow("user") << tuneIn << u"http://user:word@h"_s << false;
    QTest::newRow("null") << output << u"null"_s << true;
    QTest::newRow("file of sound") << output << u"pcm:/tmp/a b.wav"_s << true;
    QTest::newRow("file without a name") << output << u"pcm:"_s << false;
    QTest::newRow("other driver") << output << u"alsa"_s << false;
    QTest::newRow("empty is unset") << directory << u""_s << true;
}

void TestApp::environment()
{
    QFETCH(QString, variable);
    QFETCH(QString, value);
    QFETCH(bool, usable);
    QProcessEnvironment variables;
    variables.insert(variable, value);
    const auto result = Environment::from(variables);
    QCOMPARE(std::holds_alternative<Environment>(result), usable);
    if (!usable) {
        QVERIFY(std::get<QString>(result).startsWith(variable));
    }
}

void TestApp::environmentDefaults()
{
    QProcessEnvironment variables;
    const auto plain = std::get<Environment>(Environment::from(variables));
    QVERIFY(plain.audioOutput.isAutomatic());
    QVERIFY(plain.directory.baseAddress.endsWith(u'/'));
    QVERIFY(!plain.directory.tuneInBaseAddress.endsWith(u'/'));

    variables.insert(u"PLUMTIDE_DIRECTORY_URL"_s, u"http://h/api"_s);
    variables.insert(u"PLUMTIDE_TUNEIN_URL"_s, u"http://h/"_s);
    variables.insert(u"PLUMTIDE_DIRECTORY_KEY"_s, u"secret"_s);
    variables.insert(u"PLUMTIDE_AUDIO_OUTPUT"_s, u"pcm:/tmp/x.wav"_s);
    const auto set = std::get<Environment>(Environment::from(variables));
    QCOMPARE(set.directory.baseAddress, u"http://h/api/"_s);
    QCOMPARE(set.directory.tuneInBaseAddress, u"http://h"_s);
    QCOMPARE(set.directory.developerKey, u"secret"_s);
    QCOMPARE(set.audioOutput.file(), u"/tmp/x.wav"_s);
}

void TestApp::commandLine_data()
{
    QTest::addColumn<QString>("argument");
    QTest::addColumn<int>("exitStatus");
    QTest::newRow("help") << u"--help"_s << 0;
    QTest::newRow("version") << u"-v"_s << 0;
    QTest::newRow("unknown") << u"--loud"_s << 2;
    QTest::newRow("almost a command") << u"--stopp"_s << 2;
    QTest::newRow("a command") << u"--stop"_s << -1;
    QTest::newRow("the platform's") << u"-platform"_s << -1;
}

void TestApp::commandLine()
{
    QFETCH(QString, argument);
    const auto wanted = CommandLine::parse({u"plumtide"_s, argument});
    const auto *answer = std::get_if<CommandLine::Answer>(&wanted);
    QTEST(answer != nullptr ? answer->exitStatus : -1, "exitStatus");
    QVERIFY(answer == nullptr || !answer->text.isEmpty());
    QCOMPARE(std::holds_alternative<RemoteCommand>(wanted), argument == u"--stop"_s);
}

void TestApp::languageIsTheFirstThatShips()
{
    const QStringList shipped{u"de"_s, u"sv"_s};
    const QList<std::pair<QStringList, QString>> cases{{{u"de-AT"_s, u"de"_s}, u"de"_s},
                                                       {{u"fr-FR"_s, u"sv-SE"_s}, u"sv"_s},
                                                       {{u"en-GB"_s, u"de"_s}, u""_s},
                                                       {{u"C"_s}, u""_s},
                                                       {{u"dev"_s}, u""_s},
                                                       {{}, u""_s}};
    for (const auto &[languages, shown] : cases) {
        QCOMPARE(translationFor(languages, shipped), shown);
    }
}

void TestApp::lookFollowsChoiceThenDesktop()
{
    const auto isDark = &DesktopLook::isDark;
    QVERIFY(!isDark(Appearance::Light, DesktopLook::PreferDark, true));
    QVERIFY(isDark(Appearance::Dark, DesktopLook::PreferLight, false));
    QVERIFY(isDark(Appearance::Desktop, DesktopLook::PreferDark, false));
    QVERIFY(!isDark(Appearance::Desktop, DesktopLook::PreferLight, true));
    QVERIFY(isDark(Appearance::Desktop, DesktopLook::NoPreference, true));
    QVERIFY(!isDark(Appearance::Desktop, -7, false));
}

void TestApp::logLinesAreBareUnlessAPatternIsSet()
{
    const QByteArray line = "PLUMTIDE_AUDIO_OUTPUT: \"alsa\" is not \"null\" or \"pcm:FILE\"\n";
    const QList<std::pair<QString, QByteArray>> cases{
        {u""_s, line}, {u"%{type} %{category}: %{message}"_s, "critical plumtide.app: " + line}};
    for (const auto &[pattern, written] : cases) {
        QProcess program;
        QProcessEnvironment variables = QProcessEnvironment::systemEnvironment();
        variables.insert(u"PLUMTIDE_AUDIO_OUTPUT"_s, u"alsa"_s);
        variables.insert(u"QT_MESSAGE_PATTERN"_s, pattern);
        program.setProcessEnvironment(variables);
        program.start(qEnvironmentVariable("PLUMTIDE"), QStringList());
        QVERIFY(program.waitForFinished());
        QCOMPARE(program.readAllStandardError(), written);
    }
}

QTEST_GUILESS_MAIN(TestApp)
#include "tst_app.moc"
