#pragma once

#include <QDialog>

class QMenuBar;
class QTableWidget;

/// All keys of the program, grouped as the menus are, which is where most of them are read from whenever the
/// window is shown. Esc closes it.
class ShortcutsWindow : public QDialog
{
    Q_OBJECT

public:
    /// `menuBar` has to outlive the window.
    ShortcutsWindow(const QMenuBar &menuBar, QWidget *parent);

    QSize sizeHint() const override;

protected:
    void showEvent(QShowEvent *event) override;

private:
    void fill();
    void addMenu(const QString &title, const QList<QAction *> &actions);
    void addHeading(const QString &title);
    void addLine(const QString &command, const QString &keys);

    const QMenuBar &menuBar_;
    QTableWidget *table_;
};
