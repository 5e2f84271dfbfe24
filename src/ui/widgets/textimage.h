#pragma once

#include <QLineEdit>

/// A line that takes the path of a file that is dropped on it. While a drag hovers over it, it is empty; its
/// text returns when the drag leaves or the drop brings nothing, without a signal.
class TextImage : public QLineEdit
{
    Q_OBJECT

public:
    explicit TextImage(QWidget *parent = nullptr);

    /// Shows `path`, also while a drag hovers, which is told as little as any text that is set.
    void showPath(const QString &path);

Q_SIGNALS:
    /// One local file, of whatever kind, has been dropped: its full path, which the line shows now. A drop of
    /// text is reported as textEdited(); one of several files, or of none that is local, brings nothing.
    void pathDropped(const QString &path);

protected:
    void paintEvent(QPaintEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dragLeaveEvent(QDragLeaveEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    void hover(QDropEvent *event);
    void endHover();

    bool hovered_ = false;
    QString before_;
};
