#include "ui/genres/genregrid.h"
#include "ui/widgets/foldedname.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <algorithm>

namespace {
constexpr Qt::KeyboardModifiers typingModifiers = Qt::ShiftModifier | Qt::KeypadModifier;

bool isEnter(const QKeyEvent &event)
{
    return event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
}

/// A blank does not count: the space bar plays and pauses.
bool isText(const QKeyEvent &event)
{
    const QString text = event.text();
    return !text.isEmpty() && text.at(0).isPrint() && !text.at(0).isSpace() &&
           (event.modifiers() & ~typingModifiers) == Qt::NoModifier;
}
} // namespace

void GenreGrid::keyPressEvent(QKeyEvent *event)
{
    const auto step = tileStepOf(event->key());
    const bool plain = (event->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
    if (step && plain) {
        stepTo(*step);
    } else if (isEnter(*event) && plain && current_ >= 0) {
        // A held key presses once: each press is a request to the directory.
        if (!event->isAutoRepeat()) {
            madeItemAtIndex(current_)->press();
        }
    } else if (filterField_ != nullptr && event->key() == Qt::Key_Escape && !filterField_->text().isEmpty()) {
        filterField_->clear();
    } else if (filterField_ != nullptr && isText(*event)) {
        typeIntoFilter(event);
    } else {
        event->ignore();
    }
}

bool GenreGrid::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == filterField_ && event->type() == QEvent::KeyPress &&
        filterKeyPressed(*static_cast<QKeyEvent *>(event))) {
        return true;
    }
    return QAbstractScrollArea::eventFilter(watched, event);
}

/// Whether the key is one of the field's that are meant for the grid.
bool GenreGrid::filterKeyPressed(const QKeyEvent &event)
{
    if (event.key() == Qt::Key_Escape && !filterField_->text().isEmpty()) {
        filterField_->clear();
        return true;
    }
    if (event.key() == Qt::Key_Down) {
        enterTiles();
        return true;
    }
    if (isEnter(event)) {
        if (!event.isAutoRepeat() && !pressTyped()) {
            enterTiles();
        }
        return true;
    }
    return false;
}

/// Presses the tile that the text stands for: the only one shown, or the one with exactly that name. Returns
/// whether there was one.
bool GenreGrid::pressTyped()
{
    const QString typed = foldedName(filterField_->text());
    const auto isMeant = [&](qsizetype index) {
        return shown_.size() == 1 || foldedName(list_->dataSource().at(index)->nameText()) == typed;
    };
    const auto meant = std::find_if(shown_.cbegin(), shown_.cend(), isMeant);
    if (typed.isEmpty() || meant == shown_.cend()) {
        return false;
    }
    madeItemAtIndex(*meant)->press();
    return true;
}

/// Moves the focus from the field to the first tile, if there is any.
void GenreGrid::enterTiles()
{
    if (!shown_.isEmpty()) {
        setCurrentIndex(shown_.first());
        setFocus(Qt::OtherFocusReason);
    }
}

void GenreGrid::stepTo(TileStep step)
{
    if (shown_.isEmpty()) {
        return;
    }
    const qsizetype from = std::max<qsizetype>(0, shown_.indexOf(current_));
    const qsizetype to = grid_.neighbour(from, step, viewport()->height());
    if (step == TileStep::up && from < grid_.columns() && filterField_ != nullptr) {
        filterField_->setFocus(Qt::OtherFocusReason);
    } else {
        setCurrentIndex(shown_.at(to));
    }
}

void GenreGrid::typeIntoFilter(QKeyEvent *event)
{
    filterField_->setFocus(Qt::OtherFocusReason);
    filterField_->end(false);
    QCoreApplication::sendEvent(filterField_, event);
}
