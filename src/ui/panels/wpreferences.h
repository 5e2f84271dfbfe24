#pragma once

#include <QDialog>
#include <QObject>
#include <QPointer>
#include <memory>

class Matrix;
class StoredSettings;

/// The preferences window's controller; owns the window. Main thread. The window is made when it is first
/// asked for, and shows the stored settings of that moment; from then on its grids keep what the user chose,
/// whether that was saved or not. Closing the window cancels.
class WPreferences : public QObject
{
    Q_OBJECT

public:
    /// Making one is `initPreferences`. `settings` must outlive it.
    explicit WPreferences(StoredSettings &settings, QObject *parent = nullptr);
    /// Logs "Window close preferences".
    ~WPreferences() override;

    /// The window, made if need be.
    QWidget *window();
    /// Brings the window to the front, also when it is minimised, and gives it the keyboard focus.
    void showWindow();

    /// Makes the grids show the stored settings; runs once, when the window has been made. A number that is
    /// not offered selects the first cell, a User-Agent index beyond the rows selects none.
    void awakeFromNib();
    /// The action of the window's buttons, told apart by their "tag": 1 cancels, 2 saves, and any hides the
    /// window. Where no time-out or limit is selected, 15 seconds and 10 stations are saved; where no
    /// User-Agent is, -1.
    void buttonAction(const QObject *sender);

    // The outlets; null until the window has been made, or set from outside.
    /// One row: the time-out in seconds, as the cells' titles.
    Matrix *matrixRTO() const;
    void setMatrixRTO(Matrix *matrix);
    /// One row: the result limit of directory queries, as the cells' titles.
    Matrix *matrixQuery() const;
    void setMatrixQuery(Matrix *matrix);
    /// One column, a row for each User-Agent.
    Matrix *matrixUserAgent() const;
    void setMatrixUserAgent(Matrix *matrix);

private:
    void loadWindow();

    StoredSettings &settings_;
    std::unique_ptr<QDialog> window_;
    QPointer<Matrix> matrixRTO_;
    QPointer<Matrix> matrixQuery_;
    QPointer<Matrix> matrixUserAgent_;
};
