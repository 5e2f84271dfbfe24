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

    /// Null once the window is gone. Not owned.
    QWidget *window() const { return window_; }
    void setWindow(QWidget *window) { window_ = window; }

    /// Does nothing: everything has been started with the window.
    void applicationDidFinishLaunching() {}
    /// Does nothing: the controller of the main window saves the rack.
    void applicationWillTerminate() {}

    /// The user has started the program once more: brings the window to the front, whether any is visible or
    /// not. True, always: nothing else is to happen.
    bool applicationShouldHandleReopen(bool hasVisibleWindows, const Activation &activation = {});

    /// Brings the window to the front, also when it is hidden or minimised, and gives it the keyboard focus.
    void showWindow(const Activation &activation = {});

private:
    QPointer<QWidget> window_;
};
