#pragma once

#include <QProgressBar>

/// A small bar that fills with the sound in reserve, in the colour of its foreground and without a text. Qt's
/// own drawing has no round ends at this size.
class BufferBar : public QProgressBar
{
    Q_OBJECT

public:
    explicit BufferBar(QWidget *parent = nullptr);

protected:
    void paintEvent(QPaintEvent *event) override;
};
