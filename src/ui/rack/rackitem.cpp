#include "ui/rack/rackitem.h"

#include "base/displaytext.h"
#include "favourites/valuetransformers.h"
#include "ui/rack/rvimageview.h"
#include "ui/widgets/elidinglabel.h"
#include "ui/widgets/starlevel.h"
#include "ui/widgets/svgicon.h"

#include <QEvent>
#include <QPainter>
#include <QStyle>
#include <algorithm>

namespace {
constexpr int margin = 16;
constexpr int gap = 8;
constexpr int artworkHeight = 88;
constexpr int tileWidth = 152;
constexpr int nameLines = 2;
constexpr int buttonSize = 32;
constexpr int iconSize = 20;
/// The picture in a button stands in from the button's edge; the buttons reach out as far, so that the
/// pictures end where the artwork does.
constexpr int buttonOverhang = 8;
constexpr float selectedTint = 0.14F;

int onGrid(int length)
{
    return (length + gap - 1) / gap * gap;
}

int nameHeight(const QFont &font)
{
    return onGrid(nameLines * QFontMetrics(font).lineSpacing());
}

QColor mixed(const QColor &under, const QColor &over, float share)
{
    const auto channel = [share](float from, float to) { return from + (to - from) * share; };
    return QColor::fromRgbF(channel(under.redF(), over.redF()), channel(under.greenF(), over.greenF()),
                            channel(under.blueF(), over.blueF()));
}
} // namespace

RackItem::RackItem(QWidget *parent)
    : QWidget(parent)
    , artwork_(new RVImageView(this))
    , name_(new ElidingLabel(this))
    , stars_(new StarLevel(this))
    , detailsButton_(addButton(QStringLiteral("detailsButton"), detailsTag, tr("Details")))
    , playButton_(addButton(QStringLiteral("playButton"), playTag, tr("Play")))
{
    setObjectName(QStringLiteral("rackItem"));
    artwork_->setObjectName(QStringLiteral("artwork"));
    name_->setLines(nameLines);
    name_->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    stars_->setAccessibleName(tr("Stars"));
    inkIcons();
}

QToolButton *RackItem::addButton(const QString &objectName, int tag, const QString &toolTip)
{
    auto *button = new QToolButton(this);
    button->setObjectName(objectName);
    button->setProperty("tag", tag);
    button->setToolTip(toolTip);
    button->setIconSize(QSize(iconSize, iconSize));
    button->setFocusPolicy(Qt::NoFocus);
    return button;
}

QSize RackItem::sizeFor(const QFont &font)
{
    return {tileWidth, margin + artworkHeight + gap + nameHeight(font) + gap + buttonSize + gap};
}

QString RackItem::nameOf(const RadioModel &station)
{
    const QString name = displayText(station.text(RadioField::name));
    return name.isEmpty() ? tr("Unnamed station") : name;
}

void RackItem::setStation(const StationRecord &station, const ValueTransformers &transformers)
{
    if (station != station_.lock()) {
        clear();
    }
    station_ = station;
    const QString name = nameOf(*station);
    setAccessibleName(name);
    name_->setText(name);
    stars_->setValue(StarLevel::starsOf(station->stars()));
    detailsButton_->setAccessibleName(tr("Details of %1").arg(name));
    playButton_->setAccessibleName(tr("Play %1").arg(name));
    artwork_->setAccessibleName(tr("Artwork of %1").arg(name));
    showArtwork(*station, transformers);
}

void RackItem::clear()
{
    station_.reset();
}

void RackItem::showArtwork(const RadioModel &station, const ValueTransformers &transformers)
{
    const ValueTransformer *paths = transformers.valueTransformerForName(QStringLiteral("PathTransformer"));
    const auto pathOf = [paths](const QVariant &value) {
        return (paths == nullptr ? value : paths->transformedValue(value)).toString();
    };
    const auto byDefault =
        station.flag(RadioField::custom) ? RadioModel::customArtwork : RadioModel::directoryArtwork;
    artwork_->setPicture(pathOf(station.imageFilePath()), pathOf(QString(byDefault)));
}

void RackItem::setFrame(const RackItemFrame &frame)
{
    frame_ = frame;
    update();
}

void RackItem::setSelected(bool selected)
{
    if (selected_ != selected) {
        selected_ = selected;
        update();
    }
}

void RackItem::setCurrent(bool current)
{
    for (QToolButton *button : {detailsButton_, playButton_}) {
        button->setFocusPolicy(current ? Qt::TabFocus : Qt::NoFocus);
    }
}

void RackItem::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) {
        inkIcons();
    } else if (event->type() == QEvent::FontChange || event->type() == QEvent::LayoutDirectionChange) {
        layOut();
    }
}

void RackItem::resizeEvent(QResizeEvent *)
{
    layOut();
}

void RackItem::inkIcons()
{
    const QColor ink = palette().color(QPalette::WindowText);
    detailsButton_->setIcon(svgIcon(QStringLiteral("details"), ink));
    playButton_->setIcon(svgIcon(QStringLiteral("play"), ink));
}

/// Without a QLayout: a rack makes tiles while it is scrolled, and this is much cheaper.
void RackItem::layOut()
{
    const auto place = [this](QWidget *child, const QRect &rectangle) {
        child->setGeometry(QStyle::visualRect(layoutDirection(), rect(), rectangle));
    };
    const int inner = width() - 2 * margin;
    place(artwork_, {margin, margin, inner, artworkHeight});
    place(name_, {margin, margin + artworkHeight + gap, inner, nameHeight(font())});
    const int buttonsTop = height() - gap - buttonSize;
    const QSize stars = stars_->sizeHint();
    place(stars_, QRect(QPoint(margin, buttonsTop + (buttonSize - stars.height()) / 2), stars));
    const int playLeft = width() - margin + buttonOverhang - buttonSize;
    place(playButton_, {playLeft, buttonsTop, buttonSize, buttonSize});
    place(detailsButton_, {playLeft - buttonSize, buttonsTop, buttonSize, buttonSize});
}

void RackItem::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QColor base = palette().color(QPalette::Base);
    const QColor accent = palette().color(QPalette::Highlight);
    const auto rounded = [&](qreal inset) {
        const qreal radius = std::max<qreal>(0, frame_.cornerRadius - inset);
        painter.drawRoundedRect(QRectF(rect()).adjusted(inset, inset, -inset, -inset), radius, radius);
    };
    painter.setPen(Qt::NoPen);
    painter.setBrush(selected_ ? mixed(base, accent, selectedTint) : base);
    rounded(0);
    if (frame_.width > 0) {
        painter.setPen(QPen(selected_ ? accent : frame_.border, frame_.width));
        painter.setBrush(Qt::NoBrush);
        // A pen draws to both sides of its line.
        rounded(frame_.width / 2);
    }
}
