#pragma once

#include "favourites/radiomodel.h"

#include <QWidget>
#include <memory>

class PasswordField;
class QCheckBox;
class QLineEdit;
class QPushButton;
class VAddRecord;
struct StationFormValues;

namespace Ui {
class VAddRecord;
}

/// Receives the stations that are made in a VAddRecord.
class VAddRecordDelegate
{
public:
    virtual ~VAddRecordDelegate() = default;

    /// The user has confirmed the form of `sender`; `data` is the new record, never null.
    virtual void vaaddrecordDidFinish(VAddRecord *sender, const StationRecord &data) = 0;
};

/// The form for a station of the user's own. Every confirm makes a new record of the fields' contents as
/// typed: nothing is checked, and the fields keep them for the next record. What would hardly play is said in
/// one unobtrusive line, in some cases with a button that corrects it. The Enter key confirms, except on a
/// button, which it presses.
class VAddRecord : public QWidget
{
    Q_OBJECT

public:
    /// The operation called `initVaddRecord`: makes the editor with its controls, laid out in the file that
    /// is named after the class.
    explicit VAddRecord(QWidget *parent = nullptr);
    ~VAddRecord() override;

    /// Not owned; outlives this, or is taken away with null. Null by default.
    VAddRecordDelegate *delegate() const { return delegate_; }
    void setDelegate(VAddRecordDelegate *delegate) { delegate_ = delegate; }

    /// The record that the last confirm made; null before the first.
    const StationRecord &model() const { return model_; }

    QLineEdit *titleField() const;
    QLineEdit *urlField() const;
    QLineEdit *portField() const;
    QLineEdit *usernameField() const;
    PasswordField *passwordField() const;
    QLineEdit *mountpointField() const;
    /// Empty stands for http.
    QLineEdit *schemeField() const;
    /// On for a private station, whose server wants the user name and the password.
    QCheckBox *switchButton() const;
    QPushButton *confirmButton() const;

public Q_SLOTS:
    /// Confirms: makes a new record of the form, keeps it as model(), and hands it to the delegate, if there
    /// is one.
    void buttonAction();

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    StationFormValues values() const;
    void showAdvice();
    void applyRemedy();

    std::unique_ptr<Ui::VAddRecord> ui_;
    VAddRecordDelegate *delegate_ = nullptr;
    StationRecord model_;
};
