#include <QTest>

class TestVAddRecord : public QObject
{
    Q_OBJECT
};

QTEST_MAIN(TestVAddRecord)
#include "tst_vaddrecord.moc"
