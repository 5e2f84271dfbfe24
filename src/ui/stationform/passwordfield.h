#pragma once

#include <QLineEdit>

class QToolButton;

/// A line for a password, which stays hidden until the button inside it is pressed.
class PasswordField : public QLineEdit
{
    Q_OBJECT

public:
    explicit PasswordField(QWidget *parent = nullptr);

    /// Inside the line. A tab order that is set explicitly has to name it after the field.
    QToolButton *revealButton() const { return revealButton_; }

    /// Hides what may have been revealed.
    void conceal();

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    void reveal(bool revealed);

    QToolButton *revealButton_;
};
