#pragma once

#include "favourites/radiomodel.h"
#include "ui/widgets/popover.h"

#include <QPointer>
#include <memory>

class QFileDialog;
class QLineEdit;
class ValueTransformers;

namespace Ui {
class ServerForm;
class StationForm;
} // namespace Ui

/// The editor of one station of the rack. Each edit by the user is signalled at once; this never writes to
/// the record itself. Its controls are made when it is first shown.
class StationPopover : public Popover
{
    Q_OBJECT

public:
    enum class Kind {
        /// A station from the directory: `favoritPopOver`.
        favourite,
        /// One that the user has entered, with its server: `customRadioEditorPopOver`.
        custom,
    };

    StationPopover(QWidget *window, Kind kind);
    ~StationPopover() override;

    /// Holds "PathTransformer", which gives the path of a station's picture; without it the record's own text
    /// is the path. Not owned; outlives this.
    void setTransformers(const ValueTransformers *transformers) { transformers_ = transformers; }

    /// Shows `station`, which is null for none, as it is now. A password is hidden again. Emits nothing.
    void setStation(const StationRecord &station);
    /// Null where there is none, and when its last owner has released it.
    StationRecord station() const { return station_.lock(); }

Q_SIGNALS:
    /// The user wants `field` to hold `value`: a QString, for the stars a qlonglong of 0 to 5, for the
    /// private switch a bool. Never while there is no station.
    void edited(const StationRecord &station, RadioField field, const QVariant &value);

protected:
    void makeContent() override;
    void hideEvent(QHideEvent *event) override;

private:
    void makeServerControls();
    void bindText(QLineEdit *line, RadioField field);
    void edit(RadioField field, const QVariant &value);
    void editPicture(const QString &path);
    void chooseFile();
    void copyAddress();
    void showStation();
    void showPicture(const QVariant &value);
    /// The name of the default picture of the station.
    QString defaultPicture() const;

    Kind kind_;
    const ValueTransformers *transformers_ = nullptr;
    std::weak_ptr<RadioModel> station_;
    std::unique_ptr<Ui::StationForm> ui_;
    /// Null where the kind has no server.
    std::unique_ptr<Ui::ServerForm> server_;
    QPointer<QFileDialog> dialog_;
};
