#include "mainwindow/windowkeys.h"

#include "ui/panels/shortcutswindow.h"
#include "ui_mainwindow.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QShortcut>

WindowKeys::WindowKeys(QMainWindow &window, const Ui::MainWindow &ui)
    : window_(window)
    , ui_(ui)
{
    qApp->installEventFilter(this);
    // A key that is held down is one command, but where steps are made.
    for (QAction *action : window.findChildren<QAction *>(QString(), Qt::FindDirectChildrenOnly)) {
        action->setAutoRepeat(action == ui.louderAction || action == ui.softerAction ||
                              action == ui.moveLeftAction || action == ui.moveRightAction);
    }
    // Keyboards without a menu key have these; Qt knows the menu key only.
    auto *menuKeys = new QShortcut(QKeySequence(Qt::SHIFT | Qt::Key_F10), &window);
    connect(menuKeys, &QShortcut::activated, this, &WindowKeys::openContextMenu);
    connect(ui.shortcutsAction, &QAction::triggered, this, &WindowKeys::showShortcuts);
    connect(ui.findAction, &QAction::triggered, this, [field = ui.searchField] {
        field->setFocus(Qt::ShortcutFocusReason);
        field->selectAll();
    });
}

void WindowKeys::openContextMenu()
{
    QWidget *focus = window_.focusWidget() != nullptr ? window_.focusWidget() : &window_;
    const QPoint place = focus->inputMethodQuery(Qt::ImCursorRectangle).toRect().center();
    QContextMenuEvent menuKey(QContextMenuEvent::Keyboard, place, focus->mapToGlobal(place));
    QApplication::sendEvent(focus, &menuKey);
}

void WindowKeys::showShortcuts()
{
    if (shortcutsWindow_ == nullptr) {
        shortcutsWindow_ = new ShortcutsWindow(*ui_.menuBar, &window_);
    }
    shortcutsWindow_->setWindowState(shortcutsWindow_->windowState() & ~Qt::WindowMinimized);
    shortcutsWindow_->show();
    shortcutsWindow_->raise();
    shortcutsWindow_->activateWindow();
}

/// Esc takes back the search, then the way there; Down goes on to what was found.
bool WindowKeys::pressInSearch(int key)
{
    if (key == Qt::Key_Escape && !ui_.searchField->text().isEmpty()) {
        ui_.searchField->clear();
    } else if (key == Qt::Key_Escape || key == Qt::Key_Down) {
        ui_.myTableView->setFocus(Qt::OtherFocusReason);
    } else {
        return false;
    }
    return true;
}

/// The space bar presses a button that has the focus, as everywhere; elsewhere it plays and pauses.
bool WindowKeys::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::ShortcutOverride && qobject_cast<QAbstractButton *>(watched) != nullptr &&
        static_cast<QKeyEvent *>(event)->key() == Qt::Key_Space) {
        event->accept();
        return true;
    }
    if (event->type() == QEvent::KeyPress && watched == ui_.searchField) {
        return pressInSearch(static_cast<QKeyEvent *>(event)->key());
    }
    return QObject::eventFilter(watched, event);
}
