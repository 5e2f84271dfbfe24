#include "ui/stationform/vaddrecord.h"

#include "ui/stationform/stationformadvice.h"
#include "ui_vaddrecord.h"

#include <QKeyEvent>
#include <QToolButton>
#include <algorithm>

namespace {
/// Two lines of text in the usual font.
constexpr int hintHeight = 40;

/// The user can undo it in the field, like typed text.
void replaceText(QLineEdit *field, const QString &text)
{
    if (field->text() != text) {
        field->selectAll();
        field->insert(text);
        field->setCursorPosition(0);
    }
}
} // namespace

VAddRecord::VAddRecord(QWidget *parent)
    : QWidget(parent)
    , ui_(std::make_unique<Ui::VAddRecord>())
{
    ui_->setupUi(this);
    setFocusProxy(ui_->titleField);
    QToolButton *reveal = ui_->passwordField->revealButton();
    setTabOrder(ui_->passwordField, reveal);
    setTabOrder(reveal, ui_->remedyButton);

    // The form keeps its layout while they are shown and hidden.
    QSizePolicy policy = ui_->remedyButton->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    ui_->remedyButton->setSizePolicy(policy);
    ui_->hintLabel->setForegroundRole(QPalette::PlaceholderText);
    ui_->hintLabel->setFixedHeight(std::max(hintHeight, 2 * ui_->hintLabel->fontMetrics().lineSpacing()));

    for (const QLineEdit *field : {urlField(), portField(), mountpointField(), schemeField(), usernameField(),
                                   static_cast<QLineEdit *>(passwordField())}) {
        connect(field, &QLineEdit::textChanged, this, &VAddRecord::showAdvice);
    }
    connect(ui_->switchButton, &QCheckBox::toggled, this, &VAddRecord::showAdvice);
    connect(ui_->remedyButton, &QPushButton::clicked, this, &VAddRecord::applyRemedy);
    connect(ui_->confirmButton, &QPushButton::clicked, this, &VAddRecord::buttonAction);
    showAdvice();
}

VAddRecord::~VAddRecord() = default;

QLineEdit *VAddRecord::titleField() const
{
    return ui_->titleField;
}

QLineEdit *VAddRecord::urlField() const
{
    return ui_->urlField;
}

QLineEdit *VAddRecord::portField() const
{
    return ui_->portField;
}

QLineEdit *VAddRecord::usernameField() const
{
    return ui_->usernameField;
}

PasswordField *VAddRecord::passwordField() const
{
    return ui_->passwordField;
}

QLineEdit *VAddRecord::mountpointField() const
{
    return ui_->mountpointField;
}

QLineEdit *VAddRecord::schemeField() const
{
    return ui_->schemeField;
}

QCheckBox *VAddRecord::switchButton() const
{
    return ui_->switchButton;
}

QPushButton *VAddRecord::confirmButton() const
{
    return ui_->confirmButton;
}

void VAddRecord::buttonAction()
{
    model_ = std::make_shared<RadioModel>();
    model_->setName(titleField()->text());
    model_->setUrl(urlField()->text());
    model_->setPort(portField()->text());
    model_->setUsername(usernameField()->text());
    model_->setPassword(passwordField()->text());
    model_->setMountpoint(mountpointField()->text());
    model_->setRadioIsPrivate(switchButton()->isChecked());
    model_->setImageFilePath(QString(RadioModel::customArtwork));
    model_->setCustom(true);
    const QString scheme = schemeField()->text();
    model_->setRadioscheme(scheme.isEmpty() ? QStringLiteral("http") : scheme);
    if (delegate_ != nullptr) {
        // What the delegate does may lead to the next confirm.
        const StationRecord record = model_;
        delegate_->vaaddrecordDidFinish(this, record);
    }
}

void VAddRecord::keyPressEvent(QKeyEvent *event)
{
    if (event->key() != Qt::Key_Return && event->key() != Qt::Key_Enter) {
        QWidget::keyPressEvent(event);
        return;
    }
    // A key that is held down adds one station only.
    if (event->isAutoRepeat()) {
        return;
    }
    auto *focused = qobject_cast<QAbstractButton *>(focusWidget());
    const bool presses = focused != nullptr && focused != ui_->switchButton;
    (presses ? focused : ui_->confirmButton)->click();
}

void VAddRecord::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    if (!event->spontaneous()) {
        // The next station will have another title.
        ui_->titleField->selectAll();
    }
}

void VAddRecord::hideEvent(QHideEvent *event)
{
    QWidget::hideEvent(event);
    if (!event->spontaneous()) {
        ui_->passwordField->conceal();
    }
}

StationFormValues VAddRecord::values() const
{
    return {.url = urlField()->text(),
            .port = portField()->text(),
            .mountpoint = mountpointField()->text(),
            .scheme = schemeField()->text(),
            .username = usernameField()->text(),
            .password = passwordField()->text(),
            .isPrivate = switchButton()->isChecked()};
}

void VAddRecord::showAdvice()
{
    using Hint = StationFormAdvice::Hint;
    const StationFormAdvice advice = adviceFor(values());
    QString text;
    QString remedy = tr("Split into fields");
    switch (advice.hint) {
    case Hint::None:
        break;
    case Hint::Blanks:
        text = tr("There are blanks around the address.");
        remedy = tr("Remove them");
        break;
    case Hint::NoServer:
        text = tr("The address begins with http:// or https:// and the name of a server.");
        break;
    case Hint::UserInPublicAddress:
        text = tr("A station with a user name is a private one.");
        break;
    case Hint::WholeAddress:
        text = tr("A private station takes port and mount point from their own fields.");
        break;
    case Hint::PortNoNumber:
        text = tr("The port is a number from 1 to 65535.");
        break;
    case Hint::MountpointNoSlash:
        text = tr("The mount point begins with a slash, as in /live");
        break;
    case Hint::PortInPublicAddress:
        text =
            tr("The port is put last and has a field of its own. The address ends with the server's name.");
        break;
    case Hint::PathInPublicAddress:
        text = tr("The port is put last. A \"?\" before it lets the server find the mount point.");
        remedy = tr("Join into address");
        break;
    case Hint::PortMissing:
        text = tr("A private station needs its port: often 8000, or 80 for http and 443 for https.");
        break;
    case Hint::SchemeUnknown:
        text = tr("The scheme is http or https.");
        break;
    case Hint::SchemeMissing:
        text = tr("Without a scheme the station is played by http, not by https.");
        remedy = tr("Use https");
        break;
    case Hint::CredentialsUnused:
        text = tr("User name and password are sent only if Private is on.");
        break;
    }
    ui_->hintLabel->setText(text);
    ui_->remedyButton->setText(remedy);
    ui_->remedyButton->setVisible(advice.remedy.has_value());
}

void VAddRecord::applyRemedy()
{
    const std::optional<StationFormValues> remedy = adviceFor(values()).remedy;
    if (!remedy) {
        return;
    }
    // The button goes away with its reason.
    ui_->urlField->setFocus();
    replaceText(urlField(), remedy->url);
    replaceText(portField(), remedy->port);
    replaceText(mountpointField(), remedy->mountpoint);
    replaceText(schemeField(), remedy->scheme);
    replaceText(usernameField(), remedy->username);
    replaceText(passwordField(), remedy->password);
    switchButton()->setChecked(remedy->isPrivate);
}
