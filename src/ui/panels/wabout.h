#pragma once

#include <QDialog>
#include <QObject>
#include <memory>

/// The About window's controller; owns the window. Main thread. The window is made when it is first asked
/// for. Escape and Ctrl+W close it.
class WAbout : public QObject
{
    Q_OBJECT

public:
    /// Making one is `initAbout`.
    explicit WAbout(QObject *parent = nullptr);
    ~WAbout() override;

    /// The window, made if need be.
    QWidget *window();
    /// Brings the window to the front, also when it is minimised, and gives it the keyboard focus.
    void showWindow();

    /// Called once, when the window has been made. Does nothing.
    void windowDidLoad() {}

    /// Everything that the window says, in lines: for bug reports.
    static QString details();

private:
    void loadWindow();

    std::unique_ptr<QDialog> window_;
};
