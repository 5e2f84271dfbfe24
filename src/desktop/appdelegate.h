#pragma once

#include "desktop/activation.h"

#include <QObject>
#include <QPointer>
#include <QWidget>

/// What the application as a whole does for its one main window. Main thread.
class AppDelegate : public QObject
{
    Q_OBJECT

public:
    explicit AppDelegate(QWidget *window = nullptr)
        : window_(window)
    {
    }

    /// Null once the window is gone; it belongs to somebody else.
    QWidget *window() const { return window_; }
    void setWindow(QWidget *window) { window_ = window; }

    /// Does nothing: the hub has started everything when the window was made.
    void applicationDidFinishLaunching() {}
    /// Does nothing: the hub hears of the end by itself, and saves the rack.
    void applicationWillTerminate() {}

    /// The user has started the program once more: brings the window to the front, whether any is visible or
    /// not. True, always: nothing else is to happen.
    bool applicationShouldHandleReopen(bool hasVisibleWindows, const Activation &activation = {});

    /// Brings the window to the front, from wherever it is, and gives it the keyboard.
    void showWindow(const Activation &activation = {});

private:
    QPointer<QWidget> window_;
};
