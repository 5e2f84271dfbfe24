#pragma once

#include "ui/genres/genre.h"
#include "ui/widgets/clickcount.h"

#include <QWidget>

/// One genre of the picker as a tile: its name, and how much is found as quiet stars. It draws itself, so
/// that a picker full of them costs little. A single click is its action; the further clicks of a series are
/// none.
class GenreBox : public QWidget
{
    Q_OBJECT

public:
    /// Who is told of a click.
    class Delegate
    {
    public:
        virtual void boxClicked(GenreBox *sender) = 0;

    protected:
        ~Delegate() = default;
    };

    /// `genre` is shown as it is now.
    explicit GenreBox(const GenreRecord &genre, QWidget *parent = nullptr);

    /// How large a tile with that font is, at least.
    static QSize sizeFor(const QFont &font);

    /// May be null; nobody is told then. Not owned.
    void setDelegate(Delegate *delegate) { delegate_ = delegate; }
    Delegate *delegate() const { return delegate_; }

    /// Whether the pointer is over it. The events of the pointer say so too, but not of a tile that moves.
    void setHovered(bool hovered);
    void setSelected(bool selected);
    bool isSelected() const { return selected_; }
    /// Whether the keys are here, which is shown by a ring.
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
