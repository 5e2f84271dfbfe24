#pragma once

#include "playback/heardstream.h"

#include <QWidget>
#include <memory>

class QHBoxLayout;
class QToolButton;

namespace Ui {
class InfoView;
}

/// The information area of the tool bar: what plays now, in which format, and how much sound waits to be
/// played. Changes of its contents move nothing around it or in it. Where it is narrow it leaves out the bar;
/// where the tool bar is narrow it hides, so that the other controls have room. Its labels are made when
/// there is something to show.
class InfoView : public QWidget
{
    Q_OBJECT

public:
    explicit InfoView(QWidget *toolbar);
    ~InfoView() override;

    /// Its title must be fit to be shown. An empty one leaves the area empty.
    void setInfo(const StreamInfo &info);

    QToolButton *historyButton() const { return historyButton_; }

Q_SIGNALS:
    /// By the button or anywhere else in the area.
    void clicked();

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void makeTexts();
    void showBar();

    QHBoxLayout *layout_;
    QToolButton *historyButton_;
    std::unique_ptr<Ui::InfoView> ui_;
    bool playing_ = false;
    bool pressed_ = false;
};
