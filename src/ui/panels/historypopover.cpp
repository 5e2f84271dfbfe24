#include "ui/panels/historypopover.h"

#include "session/titlehistory.h"
#include "ui/table/rvcell.h"
#include "ui/widgets/copytext.h"
#include "ui/widgets/plaintooltip.h"
#include "ui_historypopover.h"

#include <QDate>
#include <QDir>
#include <QFileDialog>
#include <QHeaderView>
#include <QHelpEvent>
#include <QLoggingCategory>
#include <QSaveFile>
#include <QStandardPaths>
#include <QToolTip>
#include <algorithm>

namespace {
Q_LOGGING_CATEGORY(lcHistory, "plumtide.history")

constexpr int stationColumnWidth = 160;

/// The cells of the history: the tooltip shows the whole of what may be elided.
class TitleDelegate : public RVCell
{
public:
    using RVCell::RVCell;

    bool helpEvent(QHelpEvent *event, QAbstractItemView *view, const QStyleOptionViewItem &,
                   const QModelIndex &index) override
    {
        if (event->type() == QEvent::ToolTip) {
            QToolTip::showText(event->globalPos(), plainToolTip(index.data().toString()), view);
        }
        return true;
    }
};

/// Gives the reason where it does not work, else nothing.
QString writeFile(const QString &path, const QByteArray &content)
{
    QSaveFile file(path);
    const bool saved = file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
    return saved && file.commit() ? QString() : file.errorString();
}

/// A path for the file to be saved under, in a folder that is there.
QString suggestedPath()
{
    QDir folder(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation));
    if (!folder.exists()) {
        folder = QDir::home();
    }
    return folder.filePath(HistoryPopover::tr("Titles %1").arg(QDate::currentDate().toString(Qt::ISODate)) +
                           QLatin1StringView(".csv"));
}
} // namespace

HistoryPopover::HistoryPopover(QWidget *window, TitleHistory &history)
    : Popover(window)
    , history_(history)
{
    setObjectName(QStringLiteral("historyPopOver"));
    setBehaviour(Behaviour::SemiTransient);
}

HistoryPopover::~HistoryPopover() = default;

void HistoryPopover::makeContent()
{
    ui_ = std::make_unique<Ui::HistoryPopover>();
    ui_->setupUi(this);
    RVTableView *table = ui_->titlesTable;
    setFocusProxy(table);
    table->setItemDelegate(new TitleDelegate(table));
    table->setModel(&history_);
    table->setPlaceholderText(tr("Titles appear here as they are heard."));
    QHeaderView *header = table->horizontalHeader();
    header->setSectionResizeMode(TitleHistory::Time, QHeaderView::ResizeToContents);
    header->setSectionResizeMode(TitleHistory::Title, QHeaderView::Stretch);
    header->resizeSection(TitleHistory::Station, stationColumnWidth);
    QPalette quiet = ui_->saveMessage->palette();
    quiet.setColor(QPalette::WindowText, quiet.color(QPalette::PlaceholderText));
    ui_->saveMessage->setPalette(quiet);

    table->addActions({ui_->copyTitlesAction, ui_->selectTitlesAction});
    connect(ui_->copyTitlesAction, &QAction::triggered, this, &HistoryPopover::copy);
    connect(ui_->selectTitlesAction, &QAction::triggered, table, &QTableView::selectAll);
    connect(ui_->copyButton, &QPushButton::clicked, this, &HistoryPopover::copy);
    connect(ui_->saveCsvButton, &QPushButton::clicked, this, &HistoryPopover::askWhereToSave);
    connect(&history_, &TitleHistory::rowsInserted, this, &HistoryPopover::showHistory);
    showHistory();
}

void HistoryPopover::showHistory()
{
    const bool hasTitles = !history_.titles().isEmpty();
    ui_->copyButton->setEnabled(hasTitles);
    ui_->saveCsvButton->setEnabled(hasTitles);
}

void HistoryPopover::showEvent(QShowEvent *event)
{
    ui_->saveMessage->clear();
    Popover::showEvent(event);
}

void HistoryPopover::copy()
{
    QList<int> rows = ui_->titlesTable->selectedRows();
    std::sort(rows.begin(), rows.end());
    QStringList lines;
    if (rows.isEmpty()) {
        for (const HeardTitle &title : history_.titles()) {
            lines.append(title.title);
        }
    }
    for (const int row : rows) {
        lines.append(history_.titles().at(row).title);
    }
    copyText(lines.join(QLatin1Char('\n')));
}

void HistoryPopover::askWhereToSave()
{
    auto *dialog = new QFileDialog(this, tr("Save Titles"), suggestedPath(), tr("Tables (*.csv)"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setDefaultSuffix(QStringLiteral("csv"));
    connect(dialog, &QFileDialog::fileSelected, this, &HistoryPopover::save);
    dialog->open();
}

void HistoryPopover::save(const QString &path)
{
    writer_.start([this, path, content = titlesAsCsv(history_.titles())] {
        const QString error = writeFile(path, content);
        QMetaObject::invokeMethod(
            this, [this, error] { showSaved(error); }, Qt::QueuedConnection);
    });
}

void HistoryPopover::showSaved(const QString &error)
{
    if (!error.isEmpty()) {
        qCWarning(lcHistory).noquote() << "cannot save titles:" << error;
    }
    ui_->saveMessage->setText(error.isEmpty() ? tr("Saved.") : tr("Not saved: %1").arg(error));
}
