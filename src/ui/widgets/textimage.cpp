#include "ui/widgets/textimage.h"

#include <QDropEvent>
#include <QMimeData>
#include <QSignalBlocker>
#include <QUrl>
#include <algorithm>

namespace {
bool isLocal(const QUrl &url)
{
    const QString host = url.host();
    return url.isLocalFile() && (host.isEmpty() || host == QLatin1StringView("localhost"));
}

/// The path of the one local file in `data`; null where there is none or are several.
QString onlyLocalFile(const QMimeData &data)
{
    QString path;
    for (const QUrl &url : data.urls()) {
        if (isLocal(url)) {
            if (!path.isNull()) {
                return {};
            }
            path = url.path(QUrl::FullyDecoded);
        }
    }
    return path;
}
} // namespace

TextImage::TextImage(QWidget *parent)
    : QLineEdit(parent)
{
}

void TextImage::showPath(const QString &path)
{
    hovered_ = false;
    if (text() != path) {
        setMaxLength(std::max(maxLength(), static_cast<int>(path.size())));
        setText(path);
        setCursorPosition(0);
    }
}

void TextImage::paintEvent(QPaintEvent *event)
{
    QLineEdit::paintEvent(event);
    setAcceptDrops(true);
}

void TextImage::dragEnterEvent(QDragEnterEvent *event)
{
    hover(event);
}

void TextImage::dragMoveEvent(QDragMoveEvent *event)
{
    hover(event);
}

void TextImage::hover(QDropEvent *event)
{
    if (isReadOnly() || !(event->mimeData()->hasUrls() || event->mimeData()->hasText())) {
        event->ignore();
        return;
    }
    if (!hovered_) {
        hovered_ = true;
        before_ = text();
    }
    if (!text().isEmpty()) {
        clear();
    }
    setFocus();
    event->acceptProposedAction();
}

void TextImage::dragLeaveEvent(QDragLeaveEvent *event)
{
    QLineEdit::dragLeaveEvent(event);
    endHover();
}

void TextImage::endHover()
{
    if (hovered_) {
        hovered_ = false;
        setText(before_);
    }
}

void TextImage::dropEvent(QDropEvent *event)
{
    const bool bringsFiles = event->mimeData()->hasUrls();
    const QString path = onlyLocalFile(*event->mimeData());
    if (bringsFiles && path.isNull()) {
        event->ignore();
        endHover();
        return;
    }
    {
        // It would report the dropped text, a URL, before the path that replaces it.
        const QSignalBlocker quiet(this);
        QLineEdit::dropEvent(event);
    }
    if (!event->isAccepted() || text().isEmpty()) {
        endHover();
        return;
    }
    hovered_ = false;
    if (!bringsFiles) {
        Q_EMIT textChanged(text());
        Q_EMIT textEdited(text());
        return;
    }
    // The file itself is not moved, whatever action the drag proposed.
    if (event->possibleActions().testFlag(Qt::CopyAction)) {
        event->setDropAction(Qt::CopyAction);
        event->accept();
    }
    setText(path);
    Q_EMIT pathDropped(path);
}
