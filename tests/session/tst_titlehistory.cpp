#include "session/titlehistory.h"

#include <QAbstractItemModelTester>
#include <QTest>
#include <QTimeZone>

using namespace Qt::StringLiterals;

namespace {
const QDateTime noon(QDate(2024, 5, 1), QTime(12, 34, 56), QTimeZone(7200));
} // namespace

class TestTitleHistory : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void newestComeFirst();
    void repeatsAreEnteredOnce();
    void csvFollowsItsRules_data();
    void csvFollowsItsRules();
};

void TestTitleHistory::newestComeFirst()
{
    TitleHistory history;
    const QAbstractItemModelTester tester(&history, QAbstractItemModelTester::FailureReportingMode::QtTest);
    for (int number = 1; number <= TitleHistory::limit + 2; ++number) {
        history.add({noon, u"station"_s, QString::number(number)});
    }
    QCOMPARE(history.titles().size(), TitleHistory::limit);
    QCOMPARE(history.titles().constFirst().title, u"52"_s);
    QCOMPARE(history.titles().constLast().title, u"3"_s);
    QCOMPARE(history.index(0, TitleHistory::Time).data().toString(), u"12:34"_s);
    QCOMPARE(history.index(1, TitleHistory::Title).data().toString(), u"51"_s);
    QCOMPARE(history.index(1, TitleHistory::Station).data().toString(), u"station"_s);
}

void TestTitleHistory::repeatsAreEnteredOnce()
{
    TitleHistory history;
    const std::pair<const char *, const char *> heard[] = {
        {"one", "a"}, {"one", "a"}, {"two", "a"}, {"one", "a"}, {"one", "b"}, {"one", "a"}, {"one", "a"},
    };
    QStringList entered;
    for (const auto &[station, title] : heard) {
        history.add({noon, QString::fromLatin1(station), QString::fromLatin1(title)});
    }
    for (const HeardTitle &title : history.titles()) {
        entered.prepend(title.station + u' ' + title.title);
    }
    QCOMPARE(entered, (QStringList{u"one a"_s, u"two a"_s, u"one a"_s, u"one b"_s, u"one a"_s}));
}

void TestTitleHistory::csvFollowsItsRules_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QByteArray>("cell");
    QTest::newRow("plain") << u"A - B"_s << QByteArray("\"A - B\"");
    QTest::newRow("not ASCII") << u"Però \U0001F3B5"_s << QByteArray("\"Però \xF0\x9F\x8E\xB5\"");
    QTest::newRow("empty") << QString() << QByteArray("\"\"");
    QTest::newRow("separators") << u"a,b;c"_s << QByteArray("\"a,b;c\"");
    QTest::newRow("quotes") << u"\"a\" \"\""_s << QByteArray("\"\"\"a\"\" \"\"\"\"\"");
    QTest::newRow("line ends") << u"a\r\nb"_s << QByteArray("\"a\r\nb\"");
    QTest::newRow("apostrophe") << u"'t"_s << QByteArray("\"'t\"");
    for (const char start : {'=', '+', '-', '@', '\t', '\r'}) {
        const QByteArray formula = start + QByteArray("1+cmd|' /C calc'!A0");
        QTest::addRow("formula after %x", start) << QString::fromLatin1(formula) << "\"'" + formula + '"';
    }
    QTest::newRow("after blanks, in full width") << u" \uFF1D1"_s
                                                 << "\"' \xEF\xBC\x9D"
                                                    "1\""_ba;
    QTest::newRow("after a semicolon") << u"a;=1;b; +2;-"_s << "\"a;'=1;b;' +2;'-\""_ba;
    QTest::newRow("hides a formula") << u"\"=1"_s << QByteArray("\"\"\"=1\"");
}

void TestTitleHistory::csvFollowsItsRules()
{
    QFETCH(QString, text);
    QFETCH(QByteArray, cell);
    const QByteArray csv = titlesAsCsv({{noon, text, text}, {noon.toUTC(), u"s"_s, u"t"_s}});
    QCOMPARE(csv, "Time,Station,Title\r\n2024-05-01T12:34:56+02:00," + cell + ',' + cell +
                      "\r\n2024-05-01T10:34:56Z,\"s\",\"t\"\r\n");
}

QTEST_GUILESS_MAIN(TestTitleHistory)
#include "tst_titlehistory.moc"
