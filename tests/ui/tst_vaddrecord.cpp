#include "directory/address.h"
#include "ui/addrecordpopover.h"
#include "ui/look.h"
#include "ui/passwordfield.h"
#include "ui/stationformadvice.h"
#include "ui/vaddrecord.h"

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

/// A window with the button that opens the popover, a button beside it, and another popover.
struct Stage
{
    struct Other : Popover
    {
        using Popover::Popover;
        void makeContent() override {}
    };

    Stage()
    {
        window.resize(900, 560);
        opener.setGeometry(600, 0, 80, 32);
        elsewhere.setGeometry(0, 500, 80, 32);
        QObject::connect(&opener, &QPushButton::clicked, &popover, [this] {
            if (popover.isShown()) {
                popover.close();
            } else {
                popover.showRelativeTo(opener.rect(), &opener);
            }
        });
        QObject::connect(&elsewhere, &QPushButton::clicked, &window, [this] { ++clicks; });
        window.show();
        window.activateWindow();
        isActive = QTest::qWaitForWindowActive(&window);
        other.showRelativeTo({300, 500, 1, 1}, &window);
        QTest::mouseClick(&opener, Qt::LeftButton);
    }

    QWidget window;
    QPushButton opener{&window};
    QPushButton elsewhere{&window};
    Other other{&window};
    AddRecordPopover popover{&window};
    int clicks = 0;
    bool isActive = false;
};
} // namespace

class TestVAddRecord : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { applyLook(*qApp); }
    void confirmTakesTheFormAsItStands();
    void enterConfirms();
    void adviceIsGiven_data();
    void adviceIsGiven();
    void remedyIsApplied();
    void turningElsewhereCloses();
    void formStaysFromOneShowingToTheNext();
};

void TestVAddRecord::confirmTakesTheFormAsItStands()
{
    VAddRecord editor;
    editor.buttonAction();
    QVERIFY2(editor.model(), "a confirm without a delegate makes a record too");
    Collector collector;
    editor.setDelegate(&collector);
    const std::pair<RadioField, QLineEdit *> fields[] = {
        {RadioField::name, editor.titleField()},        {RadioField::url, editor.urlField()},
        {RadioField::port, editor.portField()},         {RadioField::mountpoint, editor.mountpointField()},
        {RadioField::username, editor.usernameField()}, {RadioField::password, editor.passwordField()}};
    const QString before = editor.model()->text(RadioField::radioUuid);
    for (const QString &scheme : {u""_s, u"  "_s, u"x"_s}) {
        editor.schemeField()->setText(scheme);
        editor.switchButton()->setChecked(!scheme.isEmpty());
        editor.confirmButton()->click();
        const RadioModel &model = *editor.model();
        QCOMPARE(collector.records.constLast().get(), &model);
        for (const auto &[field, line] : fields) {
            QCOMPARE(model.value(field), QVariant(line->text()));
            QVERIFY(line->text().isEmpty() == scheme.isEmpty());
            line->setText(u" %1 "_s.arg(static_cast<int>(field)));
        }
        QCOMPARE(model.radioscheme(), QVariant(scheme.isEmpty() ? u"http"_s : scheme));
        QCOMPARE(model.radioIsPrivate(), QVariant(!scheme.isEmpty()));
        QCOMPARE(model.custom(), QVariant(true));
        QCOMPARE(model.imageFilePath(), QVariant(u"QVX-002XY3.png"_s));
        QCOMPARE(model.genre(), RadioModel().genre());
    }
    QVERIFY(before != editor.model()->text(RadioField::radioUuid));
}

void TestVAddRecord::enterConfirms()
{
    VAddRecord editor;
    Collector collector;
    editor.setDelegate(&collector);
    editor.show();
    const auto fields = editor.findChildren<QLineEdit *>();
    QCOMPARE(fields.size(), 7);
    for (QLineEdit *field : fields) {
        field->setFocus();
        QTest::keyClick(field, Qt::Key_Return);
    }
    QCOMPARE(collector.records.size(), fields.size());
}

void TestVAddRecord::adviceIsGiven_data()
{
    QTest::addColumn<QString>("form");
    QTest::addColumn<Hint>("hint");
    QTest::addColumn<QString>("remedy");
    // What a public station asks of its server once the remedy is applied.
    QTest::addColumn<QString>("played");
    const auto row = [](const char *form, Hint hint, const char *remedy = "", const char *played = "") {
        QTest::newRow(form) << QString::fromUtf8(form) << hint << QString::fromUtf8(remedy)
                            << QString::fromUtf8(played);
    };
    for (const char *fine :
         {"", "http:/", "http://h", "http://h|65535", "http://h:8000/live?", "http://h/a?x=1&"}) {
        row(fine, Hint::None);
    }
    for (const char *noServer : {"radio.example.org", "ftp://h||||||P", "http://h:99999"}) {
        row(noServer, Hint::NoServer);
    }
    for (const char *port : {"|0", "|65536", "|80 ", "|-1", "|8o", "http://h|\u0668||||P"}) {
        row(port, Hint::PortNoNumber);
    }
    row("http://h||live", Hint::MountpointNoSlash);
    row("|||||p", Hint::CredentialsUnused);
    row("http://h||||||P", Hint::PortMissing);
    row("http://h|8|| |||P", Hint::SchemeUnknown);
    row(" http://h\n", Hint::Blanks, "http://h", "http://h");

    row("http://h:8000/|80", Hint::PortInPublicAddress, "http://h|8000", "http://h:8000");
    row("http://h|80|/", Hint::PortInPublicAddress, "http://h|80", "http://h:80");
    row("http://h:8/live", Hint::PathInPublicAddress, "http://h:8/live?", "http://h:8/live?:");
    row("http://h|8|/a%20b?x=1", Hint::PathInPublicAddress, "http://h:8/a b?x=1&", "http://h:8/a%20b?x=1&:");
    row("http://h/live?|80", Hint::PathInPublicAddress, "http://h:80/live?", "http://h:80/live?:");

    row("https://us%40er:p:w@h:84/a%20b?x=1||||||P", Hint::WholeAddress,
        "https://h/?x=1&|84|/a b|https|us@er|p:w|P");
    row("https://u:p@h/live", Hint::UserInPublicAddress, "https://h|443|/live|https|u|p|P");
    row("http://u@h|81|/m||||P", Hint::WholeAddress, "http://h|81|/m|http|u||P");
    row("https://h|8|||||P", Hint::SchemeMissing, "https://h|8||https|||P");
}

void TestVAddRecord::adviceIsGiven()
{
    QFETCH(QString, form);
    QFETCH(QString, remedy);
    QFETCH(QString, played);
    const StationFormAdvice advice = adviceFor(formOf(form));
    QTEST(advice.hint, "hint");
    QCOMPARE(advice.remedy.has_value(), !remedy.isEmpty());
    if (advice.remedy) {
        QVERIFY(*advice.remedy == formOf(remedy));
        QCOMPARE(adviceFor(*advice.remedy).hint, Hint::None);
        const QString address = advice.remedy->url + advice.remedy->mountpoint + u':' + advice.remedy->port;
        QCOMPARE(advice.remedy->isPrivate ? QString() : urlFromAddress(address).toString(QUrl::FullyEncoded),
                 played);
    }
}

void TestVAddRecord::remedyIsApplied()
{
    VAddRecord editor;
    editor.show();
    editor.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&editor));
    auto *button = editor.findChild<QPushButton *>(u"remedyButton"_s);
    const int height = editor.sizeHint().height();
    QVERIFY(!button->isVisible());
    QTest::keyClicks(editor.urlField(), u"https://u:p@h:81/live"_s);
    QVERIFY(button->isVisible());
    QCOMPARE(editor.sizeHint().height(), height);
    button->setFocus();
    QTest::keyClick(button, Qt::Key_Return);
    QVERIFY2(!editor.model(), "the Enter key presses the button that has the focus");
    QVERIFY(!button->isVisible());
    QVERIFY(editor.switchButton()->isChecked());
    QCOMPARE(editor.urlField()->text(), u"https://h"_s);
    QCOMPARE(editor.portField()->text() + editor.mountpointField()->text(), u"81/live"_s);
    QCOMPARE(editor.usernameField()->text() + editor.passwordField()->text(), u"up"_s);
    QCOMPARE(editor.schemeField()->text(), u"https"_s);
}

void TestVAddRecord::turningElsewhereCloses()
{
    Stage stage;
    QVERIFY(stage.isActive && stage.popover.isShown());
    QVERIFY(stage.popover.geometry().bottom() < 560);
    // A label takes no press: it goes on to the popover and to the window.
    QTest::mouseClick(stage.popover.findChild<QWidget *>(u"titleLabel"_s), Qt::LeftButton);
    QMenu menu(&stage.window);
    menu.popup({5, 5});
    QTest::mousePress(&menu, Qt::LeftButton, {}, {200, 200});
    menu.close();
    QEvent deactivation(QEvent::WindowDeactivate);
    QCoreApplication::sendEvent(&stage.window, &deactivation);
    QVERIFY(stage.popover.isShown());

    QTest::mouseClick(&stage.elsewhere, Qt::LeftButton);
    QVERIFY(!stage.popover.isShown());
    QCOMPARE(stage.clicks, 1);
    for (const bool shown : {true, false, true}) {
        QTest::mouseClick(&stage.opener, Qt::LeftButton);
        QCOMPARE(stage.popover.isShown(), shown);
    }
    stage.elsewhere.setFocus();
    QVERIFY2(!stage.popover.isShown(), "the keyboard turns to another control as well");
    QCOMPARE(QApplication::focusWidget(), &stage.elsewhere);
    QVERIFY(stage.other.isShown());
}

void TestVAddRecord::formStaysFromOneShowingToTheNext()
{
    Stage stage;
    VAddRecord *editor = stage.popover.editor();
    QCOMPARE(QApplication::focusWidget(), editor->titleField());
    editor->titleField()->setText(u"kept"_s);
    editor->passwordField()->revealButton()->setChecked(true);
    QTest::keyClick(editor->titleField(), Qt::Key_Escape);
    QVERIFY(!stage.popover.isShown());
    QCOMPARE(editor->passwordField()->echoMode(), QLineEdit::Password);
    QTest::mouseClick(&stage.opener, Qt::LeftButton);
    QCOMPARE(stage.popover.editor(), editor);
    QCOMPARE(editor->titleField()->selectedText(), u"kept"_s);
}

QTEST_MAIN(TestVAddRecord)
#include "tst_vaddrecord.moc"
