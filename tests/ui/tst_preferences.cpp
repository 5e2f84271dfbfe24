#include "base/rvobject.h"
#include "settings/storedsettings.h"
#include "ui/panels/wpreferences.h"
#include "ui/widgets/matrix.h"

#include <QDir>
#include <QPushButton>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {
const QString path = qEnvironmentVariable("XDG_CONFIG_HOME") + u"/plumtide/plumtide.conf"_s;

/// What the file says in its one group.
QByteArray written()
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll().simplified().replace("[General] ", "") : "";
}

/// The cell that is selected in each grid: columns, and the row of the last.
QList<int> selected(WPreferences &preferences)
{
    preferences.window();
    return {preferences.matrixRTO()->selectedColumn(), preferences.matrixQuery()->selectedColumn(),
            preferences.matrixUserAgent()->selectedRow()};
}

void press(WPreferences &preferences, const QString &button)
{
    preferences.window()->findChild<QPushButton *>(button)->click();
}
} // namespace

class TestPreferences : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void filesOfOthers_data();
    void filesOfOthers();
    void savingAndCancelling();
    void gridsWithoutAChoiceSaveTheFallBack();
    void theKeyboardDoesItAll();
    void aFileThatCannotBeWritten();
};

void TestPreferences::init()
{
    QFile::remove(path);
    QVERIFY(QDir().mkpath(path) && QDir().rmdir(path));
}

void TestPreferences::filesOfOthers_data()
{
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<double>("timeout");
    QTest::addColumn<QString>("limit");
    QTest::addColumn<QList<int>>("shown");
    const auto row = [](const char *value, double timeout, const QString &limit, const QList<int> &shown) {
        QTest::newRow(value) << QByteArray(value) << timeout << limit << shown;
    };
    row("25", 25.0, u"25"_s, {3, 0, -1});
    row("200", 200.0, u"200"_s, {0, 3, -1});
    row("75", 75.0, u"75"_s, {0, 0, -1});
    row("1", 1.0, u"1"_s, {0, 0, 1});
    row("-1", -1.0, u"-1"_s, {0, 0, -1});
    row("4294967297", 4294967297.0, u"4294967297"_s, {0, 0, -1});
    row("99999999999999999999", 9223372036854775807.0, u"none"_s, {0, 0, -1});
    row("\"10&k=x #\"", 10.0, u"none"_s, {0, 0, -1});
    row("many", 0.0, u"none"_s, {0, 0, 0});
    for (const char *nothing : {"", "10, 50", "@Invalid()", "\n[\xff\x80==\r\xfe"}) {
        row(nothing, 15.0, u"none"_s, {0, 0, 0});
    }
}

void TestPreferences::filesOfOthers()
{
    QFETCH(const QByteArray, value);
    StoredSettings settings;
    // Later than the first reading, as by another program.
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    for (const char *key : {"[General]\ntimeout_value=", "query_value=", "useragent_value="}) {
        file.write(key + value + '\n');
    }
    file.close();
    QTEST(RVObject::rtoToTime(settings.timeout()), "timeout");
    QTEST(settings.queryLimit().isNull() ? u"none"_s : settings.queryLimit(), "limit");
    WPreferences preferences(settings);
    QTEST(selected(preferences), "shown");
    preferences.matrixQuery()->selectCellAt(0, 4);
    press(preferences, u"saveButton"_s);
    QCOMPARE(settings.queryLimit(), u"500"_s);
    QVERIFY(written().contains("query_value=500 "));
}

void TestPreferences::savingAndCancelling()
{
    StoredSettings settings;
    QTest::ignoreMessage(QtInfoMsg, "Window close preferences");
    press(*std::make_unique<WPreferences>(settings), u"saveButton"_s);
    QCOMPARE(written(), "query_value=10 timeout_value=10 useragent_value=0");
    WPreferences preferences(settings);
    preferences.showWindow();
    preferences.matrixRTO()->selectCellAt(0, 4);
    press(preferences, u"cancelButton"_s);
    QCOMPARE(preferences.window()->isHidden() ? written() : "",
             "query_value=10 timeout_value=10 useragent_value=0");
    QCOMPARE(selected(preferences), (QList<int>{4, 0, 0}));
}

void TestPreferences::gridsWithoutAChoiceSaveTheFallBack()
{
    StoredSettings settings;
    WPreferences preferences(settings);
    preferences.window();
    preferences.matrixQuery()->selectCellAt(0, -1);
    preferences.matrixUserAgent()->selectCellAt(9, 0);
    for (const int column : {1, 9}) {
        preferences.matrixRTO()->selectCellAt(0, column);
        preferences.matrixRTO()->findChild<QAbstractButton *>(u"matrixRTO15"_s)->setText(u"soon"_s);
        press(preferences, u"saveButton"_s);
        QCOMPARE(written(), "query_value=10 timeout_value=15 useragent_value=-1");
        settings.setTimeout(1);
    }
}

void TestPreferences::theKeyboardDoesItAll()
{
    StoredSettings settings;
    WPreferences preferences(settings);
    preferences.showWindow();
    QVERIFY(QTest::qWaitForWindowActive(preferences.window()));
    const auto type = [&preferences](QKeyCombination key) {
        QTest::keyClick(preferences.window()->focusWidget(), key.key(), key.keyboardModifiers());
    };
    type(Qt::Key_Right);
    type(Qt::Key_Tab);
    type(Qt::Key_Right);
    type(Qt::ALT | Qt::Key_I);
    type(Qt::Key_Down);
    QCOMPARE(selected(preferences), (QList<int>{1, 1, 1}));
    type(Qt::Key_Escape);
    QVERIFY(preferences.window()->isHidden() && !QFile::exists(path));
    preferences.window()->showMinimized();
    preferences.showWindow();
    QVERIFY(!preferences.window()->isMinimized());
    type(Qt::Key_Return);
    QCOMPARE(written(), "query_value=50 timeout_value=15 useragent_value=1");
}

void TestPreferences::aFileThatCannotBeWritten()
{
    QVERIFY(QDir().mkpath(path));
    StoredSettings settings;
    WPreferences preferences(settings);
    QTest::ignoreMessage(QtWarningMsg, qPrintable(u"cannot write "_s + path));
    press(preferences, u"saveButton"_s);
    QCOMPARE(settings.timeout().toInt(), 10);
    QVERIFY(QDir().rmdir(path));
    QTest::failOnWarning(QRegularExpression(u"cannot write"_s));
    press(preferences, u"saveButton"_s);
    QVERIFY(!written().isEmpty());
}

QTEST_MAIN(TestPreferences)
#include "tst_preferences.moc"
