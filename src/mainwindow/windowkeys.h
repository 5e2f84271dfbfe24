#pragma once

#include <QObject>
#include <QPointer>

class QMainWindow;
class ShortcutsWindow;

namespace Ui {
class MainWindow;
}

/// The window's keys, as far as no menu command says it all: which control gets the space bar, how the search
/// field is left, which commands repeat while their key is held, the keys that stand for the menu key, and
/// the window that lists them all.
class WindowKeys : public QObject
{
    Q_OBJECT

public:
    /// For a window that has been set up; both must outlive this object.
    WindowKeys(QMainWindow &window, const Ui::MainWindow &ui);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void openContextMenu();
    void showShortcuts();
    bool pressInSearch(int key);

    QMainWindow &window_;
    const Ui::MainWindow &ui_;
    /// The window's child, made when it is first shown.
    QPointer<ShortcutsWindow> shortcutsWindow_;
};
