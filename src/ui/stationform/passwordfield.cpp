#include "ui/stationform/passwordfield.h"

#include "ui/widgets/svgicon.h"

#include <QStyle>
#include <QToolButton>

namespace {
constexpr int revealSize = 24;
constexpr int revealMargin = 4;
} // namespace

PasswordField::PasswordField(QWidget *parent)
    : QLineEdit(parent)
    , revealButton_(new QToolButton(this))
{
    revealButton_->setObjectName(QStringLiteral("revealButton"));
    revealButton_->setCheckable(true);
    revealButton_->setCursor(Qt::ArrowCursor);
    revealButton_->setFixedSize(revealSize, revealSize);
    revealButton_->setAccessibleName(tr("Show password"));
    connect(revealButton_, &QToolButton::toggled, this, &PasswordField::reveal);
    reveal(false);
}

void PasswordField::conceal()
{
    revealButton_->setChecked(false);
}

void PasswordField::reveal(bool revealed)
{
    setEchoMode(revealed ? Normal : Password);
    // Hidden or shown, a password must not reach an input method's dictionary or suggestions.
    setInputMethodHints(Qt::ImhHiddenText | Qt::ImhSensitiveData | Qt::ImhNoPredictiveText |
                        Qt::ImhNoAutoUppercase);
    revealButton_->setIcon(svgIcon(revealed ? QStringLiteral("eye-off") : QStringLiteral("eye"),
                                   palette().color(QPalette::Text)));
    revealButton_->setToolTip(revealed ? tr("Hide password") : tr("Show password"));
}

void PasswordField::resizeEvent(QResizeEvent *event)
{
    QLineEdit::resizeEvent(event);
    const bool mirrored = layoutDirection() == Qt::RightToLeft;
    setTextMargins(mirrored ? revealSize + revealMargin : 0, 0, mirrored ? 0 : revealSize + revealMargin, 0);
    const QRect room = rect().adjusted(revealMargin, 0, -revealMargin, 0);
    revealButton_->setGeometry(QStyle::alignedRect(layoutDirection(), Qt::AlignRight | Qt::AlignVCenter,
                                                   revealButton_->size(), room));
}
