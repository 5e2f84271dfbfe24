#pragma once

#include "ui/rack/artworkloader.h"
#include "ui/widgets/clickcount.h"

#include <QPixmap>
#include <QString>
#include <QWidget>

/// The artwork of a station: the middle of its picture, with rounded corners. A double click is its action. A
/// single click does nothing, so that neither a selection nor a drag begins on it; nor do further clicks of a
/// series.
class RVImageView : public QWidget
{
    Q_OBJECT

public:
    /// Receives the double clicks.
    class Delegate
    {
    public:
        virtual void doubleClickRVImage(RVImageView *sender) = 0;

    protected:
        ~Delegate() = default;
    };

    explicit RVImageView(QWidget *parent = nullptr);

    /// May be null. Not owned.
    void setDelegate(Delegate *delegate) { delegate_ = delegate; }

    /// Shows the picture in the file at `path`, a resource or an absolute path; that at `fallback`, a
    /// resource, until it has been loaded and where it cannot be. The disk is never waited for.
    void setPicture(const QString &path, const QString &fallback);

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;

private:
    void click(QMouseEvent *event);
    void fetch(int side);
    void showSquare(const QImage &square);

    Delegate *delegate_ = nullptr;
    ClickCount clicks_;
    QString path_;
    QString fallback_;
    QPixmap picture_;
    /// What `picture_` was made for, in device pixels; 0 where it has to be made anew.
    int side_ = 0;
    std::shared_ptr<const ArtworkLoader::Request> request_;
};
