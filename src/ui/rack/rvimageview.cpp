#include "ui/rack/rvimageview.h"

#include <QMouseEvent>
#include <QPainter>
#include <algorithm>

namespace {
constexpr qreal pictureCorner = 6;
} // namespace

RVImageView::RVImageView(QWidget *parent)
    : QWidget(parent)
{
}

void RVImageView::setPicture(const QString &path, const QString &fallback)
{
    path_ = path;
    fallback_ = fallback;
    side_ = 0;
    request_.reset();
    update();
}

void RVImageView::paintEvent(QPaintEvent *)
{
    const int extent = std::min(width(), height());
    const int side = qRound(extent * devicePixelRatioF());
    if (side > 0 && side != side_) {
        fetch(side);
    }
    QRect square(0, 0, extent, extent);
    square.moveCenter(rect().center());
    QPainter painter(this);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawPixmap(square, picture_);
    painter.end();
    // Files that are dragged over it are offered to it first; it ignores them, and they go on to its parents.
    setAcceptDrops(true);
}

/// Brings `picture_` to a new size or path, as far as that is possible at once.
void RVImageView::fetch(int side)
{
    side_ = side;
    request_.reset();
    ArtworkLoader &loader = ArtworkLoader::shared();
    const auto showOrFallBack = [this, &loader](const QImage &square) {
        showSquare(square.isNull() ? loader.picture(fallback_, side_) : square);
    };
    showOrFallBack(loader.picture(path_, side));
    if (path_.startsWith(u'/')) {
        request_ = loader.request(path_, side, [this, showOrFallBack](const QImage &square) {
            showOrFallBack(square);
            update();
        });
    }
}

/// Rounds the corners once rather than at every paint.
void RVImageView::showSquare(const QImage &square)
{
    QPixmap rounded(square.size());
    rounded.fill(Qt::transparent);
    if (!square.isNull()) {
        QPainter painter(&rounded);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(square);
        const qreal radius = pictureCorner * devicePixelRatioF();
        painter.drawRoundedRect(rounded.rect(), radius, radius);
    }
    picture_ = rounded;
}

void RVImageView::mousePressEvent(QMouseEvent *event)
{
    click(event);
}

void RVImageView::mouseDoubleClickEvent(QMouseEvent *event)
{
    click(event);
}

void RVImageView::click(QMouseEvent *event)
{
    const int place = clicks_.count(*event);
    event->setAccepted(event->button() == Qt::LeftButton);
    if (event->isAccepted() && place == 2 && delegate_ != nullptr) {
        delegate_->doubleClickRVImage(this);
    }
}

/// Accepted, or else a drag could begin in a parent.
void RVImageView::mouseMoveEvent(QMouseEvent *event)
{
    event->setAccepted(event->buttons().testFlag(Qt::LeftButton));
}

void RVImageView::mouseReleaseEvent(QMouseEvent *event)
{
    event->setAccepted(event->button() == Qt::LeftButton);
}
