#include "ui/rack/stationpopover.h"

#include "base/displaytext.h"
#include "favourites/valuetransformers.h"
#include "ui/widgets/copytext.h"
#include "ui/widgets/plaintooltip.h"
#include "ui_serverform.h"
#include "ui_stationform.h"

#include <QDir>
#include <QFileDialog>
#include <QFrame>
#include <QHideEvent>
#include <QSignalBlocker>
#include <QStandardPaths>
#include <QToolButton>
#include <QToolTip>
#include <algorithm>

namespace {
/// Between the two groups.
constexpr int groupSpacing = 16;
constexpr int fieldWidth = 224;
constexpr QLatin1StringView artworkFolder{":/artwork/"};

bool isDefaultPicture(const QString &name)
{
    return name == RadioModel::directoryArtwork || name == RadioModel::customArtwork;
}

/// Where it shows `text` already, the cursor stays where it is.
void showText(QLineEdit *line, const QString &text)
{
    if (line->text() != text) {
        // An edit must not cut off what is there.
        line->setMaxLength(std::max(line->maxLength(), static_cast<int>(text.size())));
        line->setText(text);
        line->setCursorPosition(0);
    }
}
} // namespace

StationPopover::StationPopover(QWidget *window, Kind kind)
    : Popover(window)
    , kind_(kind)
{
    setObjectName(kind == Kind::custom ? QStringLiteral("customRadioEditorPopOver")
                                       : QStringLiteral("favoritPopOver"));
    setAccessibleName(tr("Station"));
}

StationPopover::~StationPopover() = default;

void StationPopover::makeContent()
{
    auto *groups = new QHBoxLayout(this);
    groups->setContentsMargins(0, 0, 0, 0);
    groups->setSpacing(groupSpacing);
    auto *stationForm = new QWidget(this);
    ui_ = std::make_unique<Ui::StationForm>();
    ui_->setupUi(stationForm);
    groups->addWidget(stationForm, 0, Qt::AlignTop);
    setFocusProxy(ui_->nameField);

    ui_->starsField->setEditable(true);
    ui_->starsField->setHighlighted(true);
    ui_->nameField->setMinimumWidth(fieldWidth);
    bindText(ui_->nameField, RadioField::name);
    bindText(ui_->genreField, RadioField::genre);
    connect(ui_->starsField, &StarLevel::valueChanged, this,
            [this](int stars) { edit(RadioField::stars, qlonglong{stars}); });
    connect(ui_->imageFilePathField, &QLineEdit::textEdited, this, &StationPopover::editPicture);
    connect(ui_->imageFilePathField, &TextImage::pathDropped, this, &StationPopover::editPicture);
    connect(ui_->chooseButton, &QPushButton::clicked, this, &StationPopover::chooseFile);
    connect(ui_->defaultButton, &QPushButton::clicked, this, [this] { editPicture({}); });

    if (kind_ == Kind::custom) {
        ui_->addressLabel->hide();
        ui_->addressLine->hide();
        makeServerControls();
    } else {
        ui_->addressLine->setForegroundRole(QPalette::PlaceholderText);
        connect(ui_->addressLine, &TextOver::clicked, this, &StationPopover::copyAddress);
    }
    showStation();
}

void StationPopover::makeServerControls()
{
    auto *groups = static_cast<QHBoxLayout *>(layout());
    auto *line = new QFrame(this);
    line->setObjectName(QStringLiteral("groupLine"));
    line->setFixedWidth(1);
    groups->addWidget(line);
    auto *serverForm = new QWidget(this);
    server_ = std::make_unique<Ui::ServerForm>();
    server_->setupUi(serverForm);
    groups->addWidget(serverForm, 0, Qt::AlignTop);

    setTabOrder(server_->passwordField, server_->passwordField->revealButton());
    setTabOrder(server_->passwordField->revealButton(), server_->privateSwitch);
    server_->urlField->setMinimumWidth(fieldWidth);
    bindText(server_->schemeField, RadioField::radioscheme);
    bindText(server_->urlField, RadioField::url);
    bindText(server_->portField, RadioField::port);
    bindText(server_->mountpointField, RadioField::mountpoint);
    bindText(server_->usernameField, RadioField::username);
    bindText(server_->passwordField, RadioField::password);
    connect(server_->privateSwitch, &QCheckBox::toggled, this,
            [this](bool isPrivate) { edit(RadioField::radioIsPrivate, isPrivate); });
}

void StationPopover::setStation(const StationRecord &station)
{
    if (station != this->station() && dialog_) {
        dialog_->close();
    }
    station_ = station;
    showStation();
}

void StationPopover::hideEvent(QHideEvent *event)
{
    Popover::hideEvent(event);
    if (event->spontaneous()) {
        return;
    }
    if (server_) {
        server_->passwordField->conceal();
    }
    if (dialog_) {
        dialog_->close();
    }
}

void StationPopover::bindText(QLineEdit *line, RadioField field)
{
    connect(line, &QLineEdit::textEdited, this, [this, field](const QString &text) { edit(field, text); });
}

void StationPopover::edit(RadioField field, const QVariant &value)
{
    if (const StationRecord station = this->station()) {
        Q_EMIT edited(station, field, value);
    }
}

/// No path at all is the way back to the default picture.
void StationPopover::editPicture(const QString &path)
{
    const QString value = path.isEmpty() ? defaultPicture() : path;
    showPicture(value);
    edit(RadioField::imageFilePath, value);
}

void StationPopover::chooseFile()
{
    if (dialog_) {
        return;
    }
    const QString pictures = QStandardPaths::writableLocation(QStandardPaths::PicturesLocation);
    // A child of the window, because it would take on the popover's style sheet otherwise.
    dialog_ = new QFileDialog(window(), tr("Choose a Picture"),
                              QDir(pictures).exists() ? pictures : QDir::homePath());
    dialog_->setAttribute(Qt::WA_DeleteOnClose);
    dialog_->setFileMode(QFileDialog::ExistingFile);
    dialog_->setNameFilters({tr("Pictures (*.png *.jpg *.jpeg *.gif *.webp *.bmp)"), tr("All files (*)")});
    connect(dialog_, &QFileDialog::fileSelected, this, &StationPopover::editPicture);
    dialog_->open();
}

void StationPopover::copyAddress()
{
    if (const StationRecord station = this->station()) {
        copyText(withoutUserInfo(station->text(RadioField::url)));
        QToolTip::showText(ui_->addressLine->mapToGlobal(ui_->addressLine->rect().bottomLeft()), tr("Copied"),
                           ui_->addressLine);
    }
}

void StationPopover::showStation()
{
    if (!ui_) {
        return;
    }
    const StationRecord station = this->station();
    const auto text = [&](RadioField field) { return station ? station->text(field) : QString(); };
    for (QWidget *form : findChildren<QWidget *>(Qt::FindDirectChildrenOnly)) {
        form->setEnabled(station != nullptr);
    }
    showText(ui_->nameField, text(RadioField::name));
    showText(ui_->genreField, text(RadioField::genre));
    {
        const QSignalBlocker quiet(ui_->starsField);
        ui_->starsField->setValue(station ? StarLevel::starsOf(station->stars()) : 0);
    }
    showPicture(text(RadioField::imageFilePath));

    const QString address = displayText(withoutUserInfo(text(RadioField::url)));
    ui_->addressLine->setText(address.isEmpty() ? tr("None") : address);
    ui_->addressLine->setAccessibleName(tr("Copy address: %1").arg(address));
    ui_->addressLine->setEnabled(!address.isEmpty());
    ui_->addressLine->setToolTip(plainToolTip(tr("Copy address")) + plainToolTip(address));

    if (server_) {
        showText(server_->schemeField, text(RadioField::radioscheme));
        showText(server_->urlField, text(RadioField::url));
        showText(server_->portField, text(RadioField::port));
        showText(server_->mountpointField, text(RadioField::mountpoint));
        showText(server_->usernameField, text(RadioField::username));
        showText(server_->passwordField, text(RadioField::password));
        server_->passwordField->conceal();
        const QSignalBlocker quiet(server_->privateSwitch);
        server_->privateSwitch->setChecked(station && station->flag(RadioField::radioIsPrivate));
    }
}

void StationPopover::showPicture(const QVariant &value)
{
    const QString path = value.toString();
    ui_->imageFilePathField->showPath(isDefaultPicture(path) ? QString() : path);
    ui_->defaultButton->setEnabled(!path.isEmpty() && !isDefaultPicture(path));
    const ValueTransformer *transformer =
        transformers_ == nullptr ? nullptr
                                 : transformers_->valueTransformerForName(QStringLiteral("PathTransformer"));
    const QVariant picture = transformer == nullptr ? value : transformer->transformedValue(value);
    ui_->artworkPreview->setPicture(picture.toString(), artworkFolder + defaultPicture());
}

QString StationPopover::defaultPicture() const
{
    return kind_ == Kind::custom ? RadioModel::customArtwork : RadioModel::directoryArtwork;
}
