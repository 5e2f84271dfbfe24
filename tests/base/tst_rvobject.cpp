#include "base/exception.h"
#include "base/rvobject.h"

#include <QRegularExpression>
#include <QTest>

using namespace Qt::StringLiterals;

class TestRVObject : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void queriesHavePluses();
    void credentials();
    void timeouts_data();
    void timeouts();
    void numbersAndIndexes();
    void resources();
    void identifiers();
    void clocks();
    void convertedTimesFollowTheZone();
};

void TestRVObject::initTestCase()
{
    Q_INIT_RESOURCE(resources);
    qputenv("TZ", "UTC");
}

void TestRVObject::queriesHavePluses()
{
    QCOMPARE(RVObject::airAPIFormatStyle(u"  a b\tc\u00a0d"_s), u"++a+b\tc\u00a0d"_s);
}

void TestRVObject::credentials()
{
    QCOMPARE(RVObject::standardBasicAuthWithUsername(u"user"_s, u"pass"_s), u"Basic dXNlcjpwYXNz"_s);
    QCOMPARE(RVObject::standardBasicAuthWithUsername({}, {}), u"Basic Og=="_s);
    QCOMPARE(RVObject::standardBasicAuthWithUsername(u"us\u00e9r"_s, u"pass"_s), u"Basic "_s);
}

void TestRVObject::timeouts_data()
{
    QTest::addColumn<QVariant>("stored");
    QTest::addColumn<double>("seconds");
    QTest::newRow("absent") << QVariant() << 15.0;
    QTest::newRow("text") << QVariant(u"30"_s) << 30.0;
    QTest::newRow("number") << QVariant(25) << 25.0;
    QTest::newRow("no number") << QVariant(u"soon"_s) << 0.0;
    QTest::newRow("negative") << QVariant(-5) << -5.0;
}

void TestRVObject::timeouts()
{
    QFETCH(QVariant, stored);
    QTEST(RVObject::rtoToTime(stored), "seconds");
}

void TestRVObject::numbersAndIndexes()
{
    QCOMPARE(RVObject::numberFromString(u"15"_s), std::optional(15.0));
    for (const QString &text : {u""_s, u"abc"_s, u"15 s"_s, u"1,000"_s}) {
        QCOMPARE(RVObject::numberFromString(text), std::nullopt);
    }
    const QStringList choices{u"15"_s, u"abc"_s, u"30"_s, u"30.0"_s};
    QCOMPARE(RVObject::indexFromList(choices, 30), 2U);
    QCOMPARE(RVObject::indexFromList(choices, 15), 0U);
    QCOMPARE(RVObject::indexFromList(choices, 45), 0U);
    QCOMPARE(RVObject::indexFromList({}, 15), 0U);
}

void TestRVObject::resources()
{
    QCOMPARE(RVObject::jsonFromBundle(u"list"_s)->size(), 2);
    QVERIFY(!RVObject::jsonFromBundle(u"map"_s));
    QVERIFY_THROWS_EXCEPTION(Exception, RVObject::jsonFromBundle(u"latin1"_s));
    QVERIFY_THROWS_EXCEPTION(Exception, RVObject::jsonFromBundle(u"missing"_s));
}

void TestRVObject::identifiers()
{
    const QRegularExpression form(u"^[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}$"_s);
    QVERIFY(form.match(RVObject::getUUID()).hasMatch());
    QVERIFY(RVObject::getUUID() != RVObject::getUUID());
    QCOMPARE(RVObject::mysortDescriptor(u"star"_s, false),
             (QList<SortDescriptor>{{u"star"_s, Qt::DescendingOrder}}));
}

void TestRVObject::clocks()
{
    QCOMPARE(RVObject::showDigitalClock(3661), u"01:01:01"_s);
    QCOMPARE(RVObject::showDigitalClock(90000.9), u"01:00:00"_s);
    QCOMPARE(RVObject::showClock(3700), u"1 h : 1 m"_s);
    QCOMPARE(RVObject::showClock(59), u"0 h : 0 m"_s);
    QCOMPARE(RVObject::showClock(90000), u"1 h : 0 m"_s);
    // More than any month has, and the rest of a day.
    QCOMPARE(RVObject::showClock(86400.0 * 400 + 7260), u"2 h : 1 m"_s);
}

void TestRVObject::convertedTimesFollowTheZone()
{
    QCOMPARE(RVObject::convertTime(59), u"00:59"_s);
    QCOMPARE(RVObject::convertTime(61), u"01:01"_s);
    QCOMPARE(RVObject::convertTime(3601), u"00:01"_s);
    qputenv("TZ", "Asia/Kolkata");
    QCOMPARE(RVObject::convertTime(61), u"31:01"_s);
    QCOMPARE(RVObject::convertTime(59), u"00:59"_s);
}

QTEST_GUILESS_MAIN(TestRVObject)
#include "tst_rvobject.moc"
