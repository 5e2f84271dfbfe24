#pragma once

#include <QLabel>
#include <QStringList>

/// A label of one line of plain text, or of a few. What does not fit is elided, so that the width of a text
/// never moves its neighbours; the whole text then stands above its tooltip.
class ElidingLabel : public QLabel
{
    Q_OBJECT

public:
    explicit ElidingLabel(QWidget *parent = nullptr);

    /// Lets the text wrap at blanks over up to `lines` lines, 1 or more; the last one is elided.
    void setLines(int lines);

    QSize minimumSizeHint() const override;

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    /// All lines; the last one holds the rest of the text, whether or not it fits.
    QStringList brokenLines() const;
    bool fits(const QString &line) const;

    int lines_ = 1;
};
