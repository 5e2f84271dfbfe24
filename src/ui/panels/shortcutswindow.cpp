#include "ui/panels/shortcutswindow.h"

#include <QAction>
#include <QHeaderView>
#include <QMenu>
#include <QMenuBar>
#include <QShowEvent>
#include <QTableWidget>
#include <QVBoxLayout>
#include <array>
#include <utility>

namespace {
constexpr int windowWidth = 480;
constexpr int windowHeight = 600;
constexpr int contentMargin = 16;
constexpr int lineHeight = 28;
constexpr int headingHeight = 48;

/// What no menu has.
constexpr std::array<std::pair<const char *, const char *>, 10> otherKeys{{
    {QT_TRANSLATE_NOOP("ShortcutsWindow", "Play the station"), QT_TRANSLATE_NOOP("ShortcutsWindow", "Enter")},
    {QT_TRANSLATE_NOOP("ShortcutsWindow", "Go to another station"),
     QT_TRANSLATE_NOOP("ShortcutsWindow", "Arrow keys")},
    {QT_TRANSLATE_NOOP("ShortcutsWindow", "Select several stations"),
     QT_TRANSLATE_NOOP("ShortcutsWindow", "Shift+Arrow keys")},
    {QT_TRANSLATE_NOOP("ShortcutsWindow", "Add a favourite to the selection"),
     QT_TRANSLATE_NOOP("ShortcutsWindow", "Ctrl+Space")},
    {QT_TRANSLATE_NOOP("ShortcutsWindow", "Menu of the station"),
     QT_TRANSLATE_NOOP("ShortcutsWindow", "Menu key or Shift+F10")},
    {QT_TRANSLATE_NOOP("ShortcutsWindow", "Go to the next part of the window"),
     QT_TRANSLATE_NOOP("ShortcutsWindow", "Tab")},
    {QT_TRANSLATE_NOOP("ShortcutsWindow", "Go to the part before"),
     QT_TRANSLATE_NOOP("ShortcutsWindow", "Shift+Tab")},
    {QT_TRANSLATE_NOOP("ShortcutsWindow", "From the search to the stations"),
     QT_TRANSLATE_NOOP("ShortcutsWindow", "Down")},
    {QT_TRANSLATE_NOOP("ShortcutsWindow", "Clear the search, or close what is open"),
     QT_TRANSLATE_NOOP("ShortcutsWindow", "Esc")},
    {QT_TRANSLATE_NOOP("ShortcutsWindow", "Open the menus"), QT_TRANSLATE_NOOP("ShortcutsWindow", "Alt")},
}};

/// A menu's text as it is read: without the mark of its letter, and without the dots.
QString plainText(QString text)
{
    text.remove(QStringLiteral("...")).remove(QChar(0x2026));
    text.replace(QStringLiteral("&&"), QString(QChar::Null));
    text.remove(u'&');
    return text.replace(QChar::Null, u'&').trimmed();
}

QString keysOf(const QAction &action)
{
    QStringList keys;
    for (const QKeySequence &sequence : action.shortcuts()) {
        keys.append(sequence.toString(QKeySequence::NativeText));
    }
    return keys.join(ShortcutsWindow::tr(" or "));
}
} // namespace

ShortcutsWindow::ShortcutsWindow(const QMenuBar &menuBar, QWidget *parent)
    : QDialog(parent)
    , menuBar_(menuBar)
    , table_(new QTableWidget(0, 2, this))
{
    setObjectName(QStringLiteral("shortcutsWindow"));
    setWindowTitle(tr("Keyboard Shortcuts"));
    table_->setObjectName(QStringLiteral("shortcutsTable"));
    table_->setAccessibleName(tr("Keyboard Shortcuts"));
    table_->setHorizontalHeaderLabels({tr("Command"), tr("Keys")});
    table_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table_->setSelectionBehavior(QAbstractItemView::SelectRows);
    table_->setSelectionMode(QAbstractItemView::SingleSelection);
    table_->setTabKeyNavigation(false);
    table_->setShowGrid(false);
    table_->setFrameShape(QFrame::NoFrame);
    table_->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    table_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    table_->horizontalHeader()->hide();
    table_->horizontalHeader()->setSectionResizeMode(0, QHeaderView::Stretch);
    table_->horizontalHeader()->setSectionResizeMode(1, QHeaderView::ResizeToContents);
    table_->verticalHeader()->hide();
    table_->verticalHeader()->setMinimumSectionSize(lineHeight);
    auto *content = new QVBoxLayout(this);
    content->setContentsMargins(contentMargin, contentMargin / 2, contentMargin / 2, contentMargin);
    content->addWidget(table_);
}

QSize ShortcutsWindow::sizeHint() const
{
    return {windowWidth, windowHeight};
}

void ShortcutsWindow::showEvent(QShowEvent *event)
{
    if (!event->spontaneous()) {
        fill();
    }
    QDialog::showEvent(event);
}

void ShortcutsWindow::fill()
{
    table_->setRowCount(0);
    for (const QAction *menu : menuBar_.actions()) {
        if (menu->menu() != nullptr) {
            addMenu(plainText(menu->text()), menu->menu()->actions());
        }
    }
    addHeading(tr("Lists and Cards"));
    for (const auto &[command, keys] : otherKeys) {
        addLine(tr(command), tr(keys));
    }
    table_->setCurrentCell(1, 0);
    table_->scrollToTop();
}

/// A menu that has no keys is left out.
void ShortcutsWindow::addMenu(const QString &title, const QList<QAction *> &actions)
{
    bool isHeaded = false;
    for (const QAction *action : actions) {
        if (action->menu() != nullptr) {
            addMenu(plainText(action->text()), action->menu()->actions());
        } else if (!action->shortcut().isEmpty() && action->isVisible()) {
            if (!std::exchange(isHeaded, true)) {
                addHeading(title);
            }
            addLine(plainText(action->text()), keysOf(*action));
        }
    }
}

void ShortcutsWindow::addHeading(const QString &title)
{
    const int row = table_->rowCount();
    table_->insertRow(row);
    table_->setRowHeight(row, headingHeight);
    table_->setSpan(row, 0, 1, 2);
    auto *heading = new QTableWidgetItem(title);
    // The keys pass it by.
    heading->setFlags(Qt::NoItemFlags);
    QFont font = table_->font();
    font.setWeight(QFont::DemiBold);
    heading->setFont(font);
    table_->setItem(row, 0, heading);
}

void ShortcutsWindow::addLine(const QString &command, const QString &keys)
{
    const int row = table_->rowCount();
    table_->insertRow(row);
    table_->setRowHeight(row, lineHeight);
    int column = 0;
    for (const QString &text : {command, keys}) {
        auto *cell = new QTableWidgetItem(text);
        cell->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
        table_->setItem(row, column++, cell);
    }
}
