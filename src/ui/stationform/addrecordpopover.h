#pragma once

#include "ui/widgets/popover.h"

class VAddRecord;
class VAddRecordDelegate;

/// The popover with the form for a station of the user's own: `customRadioPopOver`, semi-transient. There is
/// one form, made when it is first shown or asked for, which keeps its contents from one showing to the next.
class AddRecordPopover : public Popover
{
    Q_OBJECT

public:
    explicit AddRecordPopover(QWidget *window);

    /// The one editor, owned by this.
    VAddRecord *editor();

    /// Receives the stations that are made here; see VAddRecord::setDelegate(). Does not make the editor.
    void setDelegate(VAddRecordDelegate *delegate);

protected:
    void makeContent() override;

private:
    VAddRecord *editor_ = nullptr;
    VAddRecordDelegate *delegate_ = nullptr;
};
