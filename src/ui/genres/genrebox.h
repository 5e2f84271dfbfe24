#pragma once

#include "ui/genres/genre.h"
#include "ui/widgets/clickcount.h"

#include <QWidget>

/// One genre of the picker as a tile: its name, and how much is found as dim stars. It paints itself, without
/// child widgets, so that a picker full of them costs little. A single click triggers its action; further
/// clicks of a series do nothing.
class GenreBox : public QWidget
{
    Q_OBJECT

public:
    /// Receives the clicks.
    class Delegate
    {
    public:
        virtual void boxClicked(GenreBox *sender) = 0;

    protected:
        ~Delegate() = default;
    };

    /// `genre` is shown as it is now.
    explicit GenreBox(const GenreRecord &genre, QWidget *parent = nullptr);

    /// The minimum size of a tile with that font.
    static QSize sizeFor(const QFont &font);

    /// May be null. Not owned.
    void setDelegate(Delegate *delegate) { delegate_ = delegate; }
    Delegate *delegate() const { return delegate_; }

    /// Whether the pointer is over it. Pointer events set this too, but there are none when a tile moves
    /// under the pointer.
    void setHovered(bool hovered);
    void setSelected(bool selected);
    bool isSelected() const { return selected_; }
    /// Whether it is the current tile while the grid has the focus, which a ring shows.
    void setCurrent(bool current);
    bool isCurrent() const { return current_; }

    /// Does what a single click does.
    void press();

    QSize sizeHint() const override { return sizeFor(font()); }

protected:
    bool event(QEvent *event) override;
    void enterEvent(QEnterEvent *) override { setHovered(true); }
    void leaveEvent(QEvent *) override { setHovered(false); }
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override { mouseDown(event); }
    void mouseDoubleClickEvent(QMouseEvent *event) override { mouseDown(event); }

private:
    void mouseDown(QMouseEvent *event);
    QRect starsPlace() const;
    QRect namePlace() const;

    Delegate *delegate_ = nullptr;
    ClickCount clicks_;
    QString name_;
    QString description_;
    int stars_ = 0;
    bool hovered_ = false;
    bool selected_ = false;
    bool current_ = false;
};
