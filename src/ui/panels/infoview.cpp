#include "ui/panels/infoview.h"

#include "ui/widgets/plaintooltip.h"
#include "ui_infoview.h"

#include <QHBoxLayout>
#include <QMouseEvent>
#include <QToolButton>
#include <algorithm>
#include <utility>

namespace {
constexpr qreal smallScale = 0.95;
constexpr int spacing = 8;
constexpr int historyButtonSize = 40;
constexpr int historyIconSize = 24;
/// Below this width, in logical pixels, the bar is left out in favour of the format.
constexpr int narrowestWithBar = 240;
constexpr int narrowestToolbar = 800;
constexpr int secondsPerMinute = 60;
/// The largest number that is shown in seconds, and in minutes.
constexpr int longestCount = 99;

QString formatText(const StreamInfo &info)
{
    const QString format =
        info.bitrate > 0 ? InfoView::tr("%1 %2 kbit/s").arg(info.codec).arg(info.bitrate) : info.codec;
    return info.isUnverified ? InfoView::tr("%1 · not verified").arg(format) : format;
}

/// A paused station may load hours of sound.
QString durationText(int seconds)
{
    const int minutes = seconds / secondsPerMinute;
    if (seconds <= longestCount) {
        return InfoView::tr("%1 s").arg(seconds);
    }
    return minutes <= longestCount ? InfoView::tr("%1 min").arg(minutes)
                                   : InfoView::tr("%1 h").arg(minutes / secondsPerMinute);
}
} // namespace

InfoView::InfoView(QWidget *toolbar)
    : QWidget(toolbar)
    , layout_(new QHBoxLayout(this))
    , historyButton_(new QToolButton(this))
{
    setAccessibleName(tr("Now playing"));
    historyButton_->setObjectName(QStringLiteral("historyButton"));
    historyButton_->setFixedSize(historyButtonSize, historyButtonSize);
    historyButton_->setIconSize({historyIconSize, historyIconSize});
    historyButton_->setFocusPolicy(Qt::TabFocus);
    historyButton_->setToolTip(tr("Recent titles"));
    historyButton_->setAccessibleName(tr("Recent titles"));
    connect(historyButton_, &QToolButton::clicked, this, &InfoView::clicked);
    layout_->setContentsMargins(0, 0, 0, 0);
    layout_->setSpacing(spacing);
    layout_->addWidget(historyButton_, 0, Qt::AlignRight);
    toolbar->installEventFilter(this);
}

InfoView::~InfoView() = default;

void InfoView::makeTexts()
{
    auto *texts = new QWidget(this);
    ui_ = std::make_unique<Ui::InfoView>();
    ui_->setupUi(texts);
    QFont small = font();
    small.setPointSizeF(small.pointSizeF() * smallScale);
    ui_->formatLabel->setFont(small);
    ui_->bufferLabel->setFont(small);
    // A label of fixed size causes no new layout when its text changes.
    const QFontMetrics metrics(small);
    ui_->bufferLabel->setFixedSize(metrics.horizontalAdvance(tr("%1 min").arg(longestCount)),
                                   metrics.height());
    layout_->insertWidget(0, texts, 1);
}

void InfoView::setInfo(const StreamInfo &info)
{
    playing_ = !info.isEmpty();
    if (!ui_) {
        if (!playing_) {
            return;
        }
        makeTexts();
    }
    ui_->nowPlayingLabel->setText(info.title);
    ui_->formatLabel->setText(formatText(info));
    ui_->formatLabel->setToolTip(
        info.isUnverified ? plainToolTip(tr("The server's certificate could not be verified.")) : QString());
    ui_->bufferLabel->setText(playing_ ? durationText(info.buffered) : QString());
    ui_->bufferBar->setValue(std::min(info.buffered, ui_->bufferBar->maximum()));
    showBar();
}

/// It keeps its space while nothing plays.
void InfoView::showBar()
{
    if (!ui_) {
        return;
    }
    const bool hasRoom = width() >= narrowestWithBar;
    QSizePolicy policy = ui_->bufferBar->sizePolicy();
    policy.setRetainSizeWhenHidden(hasRoom);
    ui_->bufferBar->setSizePolicy(policy);
    ui_->bufferBar->setVisible(hasRoom && playing_);
}

void InfoView::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    showBar();
}

bool InfoView::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == parentWidget() && event->type() == QEvent::Resize) {
        setVisible(parentWidget()->width() >= narrowestToolbar);
    }
    return QWidget::eventFilter(watched, event);
}

void InfoView::mousePressEvent(QMouseEvent *event)
{
    pressed_ = event->button() == Qt::LeftButton;
    event->setAccepted(pressed_);
}

void InfoView::mouseReleaseEvent(QMouseEvent *event)
{
    if (std::exchange(pressed_, false) && rect().contains(event->position().toPoint())) {
        Q_EMIT clicked();
    }
}
