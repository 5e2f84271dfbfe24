#include "ui/stationform/addrecordpopover.h"

#include "ui/stationform/vaddrecord.h"

#include <QVBoxLayout>

AddRecordPopover::AddRecordPopover(QWidget *window)
    : Popover(window)
{
    setObjectName(QStringLiteral("customRadioPopOver"));
    setAccessibleName(tr("Add Station"));
    setBehaviour(Behaviour::SemiTransient);
}

VAddRecord *AddRecordPopover::editor()
{
    if (editor_ == nullptr) {
        editor_ = new VAddRecord(this);
        editor_->setDelegate(delegate_);
        auto *content = new QVBoxLayout(this);
        content->setContentsMargins(0, 0, 0, 0);
        content->addWidget(editor_);
        setFocusProxy(editor_);
    }
    return editor_;
}

void AddRecordPopover::setDelegate(VAddRecordDelegate *delegate)
{
    delegate_ = delegate;
    if (editor_ != nullptr) {
        editor_->setDelegate(delegate);
    }
}

void AddRecordPopover::makeContent()
{
    editor();
}
