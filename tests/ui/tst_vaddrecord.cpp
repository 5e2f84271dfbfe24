#include "ui/panels/audiopopover.h"
#include "ui/stationform/addrecordpopover.h"
#include "ui/stationform/passwordfield.h"
#include "ui/stationform/stationformadvice.h"
#include "ui/stationform/vaddrecord.h"
#include "ui/widgets/look.h"

#include <QApplication>
#include <QCheckBox>
#include <QMenu>
#include <QPushButton>
#include <QTest>
#include <QToolButton>

using namespace Qt::StringLiterals;
using Hint = StationFormAdvice::Hint;

namespace {
struct Collector : VAddRecordDelegate
{
    void vaaddrecordDidFinish(VAddRecord *, const StationRecord &data) override { records.append(data); }
    StationRecords records;
};

/// The fields, in their order, with "|" between them; "P" for a private station comes last.
StationFormValues formOf(const QString &text)
{
    QStringList parts = text.split(u'|');
    parts.resize(7);
    return {parts[0], parts[1], parts[2], parts[3], parts[4], parts[5], parts[6] == u"P"};
}

bool activate(QWidget &window)
{
    window.show();
    window.activateWindow();
    return QTest::qWaitForWindowActive(&window);
}
} // namespace

class TestVAddRecord : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { applyLook(*qApp); }
    void confirmTakesTheFormAsItStands()
    {
        VAddRecord editor;
        editor.buttonAction();
        QVERIFY2(editor.model(), "a confirm without a delegate makes a record too");
        Collector collector;
        editor.setDelegate(&collector);
        const std::pair<RadioField, QLineEdit *> fields[] = {
            {RadioField::name, editor.titleField()},
            {RadioField::url, editor.urlField()},
            {RadioField::port, editor.portField()},
            {RadioField::mountpoint, editor.mountpointField()},
            {RadioField::username, editor.usernameField()},
            {RadioField::password, editor.passwordField()},
        };
        for (const QString &scheme : {u""_s, u"  "_s, u"x"_s}) {
            editor.schemeField()->setText(scheme);
            editor.switchButton()->setChecked(!scheme.isEmpty());
            QTest::keyClick(editor.portField(), Qt::Key_Return);
            const RadioModel &model = *editor.model();
            QCOMPARE(collector.records.constLast().get(), &model);
            for (const auto &[field, line] : fields) {
                QCOMPARE(model.value(field), QVariant(line->text()));
                line->setText(u" %1 "_s.arg(static_cast<int>(field)));
            }
            QCOMPARE(model.radioscheme(), QVariant(scheme.isEmpty() ? u"http"_s : scheme));
            QCOMPARE(model.radioIsPrivate(), QVariant(!scheme.isEmpty()));
            QVERIFY(model.flag(RadioField::custom));
            QCOMPARE(model.imageFilePath(), QVariant(u"QVX-002XY3.png"_s));
        }
        QVERIFY(collector.records[0]->radioUuid() != collector.records[1]->radioUuid());
    }

    void adviceIsGiven()
    {
        struct
        {
            QStringList forms;
            Hint hint;
            QString remedy = {};
        } const table[] = {
            {{u""_s, u"http:/"_s, u"http://h|65535"_s, u"http://h:8/m?"_s, u"http://h/a?x&"_s}, Hint::None},
            {{u"radio.example.org"_s, u"ftp://h||||||P"_s, u"http://h:99999"_s}, Hint::NoServer},
            {{u"|0"_s, u"|65536"_s, u"|80 "_s, u"|-1"_s, u"http://h|\u0668||||P"_s}, Hint::PortNoNumber},
            {{u"http://h||live"_s, u"http://h|8|live?x||||P"_s}, Hint::MountpointNoSlash},
            {{u"|||||p"_s}, Hint::CredentialsUnused},
            {{u"http://h||||||P"_s}, Hint::PortMissing},
            {{u"http://h|8|| |||P"_s}, Hint::SchemeUnknown},
            {{u" http://h\n"_s}, Hint::Blanks, u"http://h"_s},
            {{u"http://h:80/|8"_s, u"http://h|80|/"_s}, Hint::PortInPublicAddress, u"http://h|80"_s},
            {{u"http://h:8/live"_s, u"http://h/|8|/live"_s, u"http://h/live?|8"_s},
             Hint::PathInPublicAddress,
             u"http://h:8/live?"_s},
            {{u"http://h|8|/a%20b?x=1"_s}, Hint::PathInPublicAddress, u"http://h:8/a b?x=1&"_s},
            {{u"https://u%40:p:w@h:84/a%20b?x=1|9|/old||||P"_s, u"https://u%40:p:w@h|84|/a%20b?x=1||||P"_s},
             Hint::WholeAddress,
             u"https://h/?x=1&|84|/a b|https|u@|p:w|P"_s},
            {{u"https://u:p@h/live"_s}, Hint::UserInPublicAddress, u"https://h|443|/live|https|u|p|P"_s},
            {{u"https://h|8|||||P"_s}, Hint::SchemeMissing, u"https://h|8||https|||P"_s},
        };
        for (const auto &[forms, hint, remedy] : table) {
            for (const QString &form : forms) {
                const StationFormAdvice advice = adviceFor(formOf(form));
                QVERIFY2(advice.hint == hint, qPrintable(form));
                QVERIFY2(advice.remedy.value_or(formOf({})) == formOf(remedy), qPrintable(form));
                QCOMPARE(adviceFor(advice.remedy.value_or(formOf({}))).hint, Hint::None);
            }
        }
    }

    void remedyIsApplied()
    {
        VAddRecord editor;
        QVERIFY(activate(editor));
        auto *button = editor.findChild<QPushButton *>(u"remedyButton"_s);
        const int height = editor.sizeHint().height();
        QTest::keyClicks(editor.urlField(), u"https://u:p@h:81/live"_s);
        QVERIFY(button->isVisible() && editor.sizeHint().height() == height);
        button->setFocus();
        QTest::keyClick(button, Qt::Key_Return);
        QVERIFY2(!editor.model(), "the Enter key presses the button that has the focus");
        QVERIFY(!button->isVisible() && editor.switchButton()->isChecked());
        QCOMPARE(editor.urlField()->text() + editor.schemeField()->text(), u"https://hhttps"_s);
        QCOMPARE(editor.portField()->text() + editor.mountpointField()->text(), u"81/live"_s);
        QCOMPARE(editor.usernameField()->text() + editor.passwordField()->text(), u"up"_s);
    }

    void turningElsewhereCloses()
    {
        QWidget window;
        QPushButton opener(&window), elsewhere(&window);
        AudioPopover other(&window);
        AddRecordPopover popover(&window);
        int clicks = 0;
        window.resize(900, 560);
        opener.setGeometry(600, 0, 80, 32);
        elsewhere.setGeometry(0, 500, 80, 32);
        connect(&opener, &QPushButton::clicked, &popover, [&] {
            popover.isShown() ? void(popover.close()) : popover.showRelativeTo(opener.rect(), &opener);
        });
        connect(&elsewhere, &QPushButton::clicked, &window, [&] { ++clicks; });
        QVERIFY(activate(window));
        other.showRelativeTo({300, 500, 1, 1}, &window);
        QTest::mouseClick(&opener, Qt::LeftButton);
        QVERIFY(popover.isShown() && popover.geometry().bottom() < 560);
        // A label takes no press: it goes on to the popover and to the window.
        QTest::mouseClick(popover.findChild<QWidget *>(u"titleLabel"_s), Qt::LeftButton);
        QWidget another;
        QMenu menu(&window);
        menu.popup({5, 5});
        QTest::mousePress(&menu, Qt::LeftButton, {}, {200, 200});
        menu.close();
        QVERIFY(activate(another) && activate(window) && popover.isShown());
        QTest::mouseClick(&elsewhere, Qt::LeftButton);
        QVERIFY(!popover.isShown() && clicks == 1);
        for (const bool shown : {true, false, true}) {
            QTest::mouseClick(&opener, Qt::LeftButton);
            QCOMPARE(popover.isShown(), shown);
        }
        elsewhere.setFocus();
        QVERIFY(!popover.isShown() && elsewhere.hasFocus());
        VAddRecord *editor = popover.editor();
        editor->titleField()->setText(u"kept"_s);
        QTest::mouseClick(&opener, Qt::LeftButton);
        QCOMPARE(editor->titleField()->selectedText(), u"kept"_s);
        editor->passwordField()->revealButton()->setChecked(true);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
        QVERIFY(!popover.isShown() && other.isShown());
        QCOMPARE(editor->passwordField()->echoMode(), QLineEdit::Password);
    }
};

QTEST_MAIN(TestVAddRecord)
#include "tst_vaddrecord.moc"
