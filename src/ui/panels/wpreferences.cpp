#include "ui/panels/wpreferences.h"

#include "base/leadinginteger.h"
#include "base/rvobject.h"
#include "playback/useragents.h"
#include "settings/storedsettings.h"
#include "ui/widgets/matrix.h"
#include "ui_wpreferences.h"

#include <QLoggingCategory>
#include <algorithm>
#include <limits>

namespace {
Q_LOGGING_CATEGORY(lcPreferences, "plumtide.preferences")

constexpr int saveTag = 2;

const QStringList &timeouts()
{
    static const QStringList list{QStringLiteral("10"), QStringLiteral("15"), QStringLiteral("20"),
                                  QStringLiteral("25"), QStringLiteral("30")};
    return list;
}

const QStringList &queryLimits()
{
    static const QStringList list{QStringLiteral("10"), QStringLiteral("50"), QStringLiteral("100"),
                                  QStringLiteral("200"), QStringLiteral("500")};
    return list;
}

void select(Matrix *matrix, int row, int column)
{
    if (matrix != nullptr) {
        matrix->selectCellAt(row, column);
    }
}

/// The column of `stored` among the titles `list`; 0 where it is not among them.
int columnOf(const QString &stored, const QStringList &list)
{
    const auto number = RVObject::numberFromString(stored);
    return number ? static_cast<int>(RVObject::indexFromList(list, *number)) : 0;
}

/// The integer that the selected cell's title stands for.
qint64 selectedNumber(const Matrix *matrix, qint64 fallback)
{
    const auto *cell = matrix != nullptr
                           ? qobject_cast<QAbstractButton *>(matrix->cellAt(0, matrix->selectedColumn()))
                           : nullptr;
    const QString title = cell != nullptr ? cell->text() : QString();
    return RVObject::numberFromString(title) ? leadingInteger(title) : fallback;
}
} // namespace

WPreferences::WPreferences(StoredSettings &settings, QObject *parent)
    : QObject(parent)
    , settings_(settings)
{
}

WPreferences::~WPreferences()
{
    qCInfo(lcPreferences).noquote() << "Window close preferences";
}

QWidget *WPreferences::window()
{
    if (!window_) {
        loadWindow();
    }
    return window_.get();
}

void WPreferences::showWindow()
{
    window()->setWindowState(window()->windowState() & ~Qt::WindowMinimized);
    window()->show();
    window()->raise();
    window()->activateWindow();
}

void WPreferences::awakeFromNib()
{
    select(matrixRTO_, 0, columnOf(settings_.timeout().toString(), timeouts()));
    select(matrixQuery_, 0, columnOf(settings_.queryLimit(), queryLimits()));
    constexpr qint64 farthest = std::numeric_limits<int>::max();
    const qint64 row = leadingInteger(settings_.userAgent().toString());
    select(matrixUserAgent_, static_cast<int>(std::clamp(row, -farthest, farthest)), 0);
}

void WPreferences::buttonAction(const QObject *sender)
{
    if (sender->property("tag").toInt() == saveTag) {
        constexpr qint64 fallbackTimeout = 15;
        constexpr qint64 fallbackLimit = 10;
        settings_.setTimeout(selectedNumber(matrixRTO_, fallbackTimeout));
        settings_.setQueryLimit(selectedNumber(matrixQuery_, fallbackLimit));
        settings_.setUserAgent(matrixUserAgent_ ? matrixUserAgent_->selectedRow() : 0);
        settings_.synchronize();
    }
    if (window_) {
        window_->hide();
    }
}

Matrix *WPreferences::matrixRTO() const
{
    return matrixRTO_;
}

void WPreferences::setMatrixRTO(Matrix *matrix)
{
    matrixRTO_ = matrix;
}

Matrix *WPreferences::matrixQuery() const
{
    return matrixQuery_;
}

void WPreferences::setMatrixQuery(Matrix *matrix)
{
    matrixQuery_ = matrix;
}

Matrix *WPreferences::matrixUserAgent() const
{
    return matrixUserAgent_;
}

void WPreferences::setMatrixUserAgent(Matrix *matrix)
{
    matrixUserAgent_ = matrix;
}

void WPreferences::loadWindow()
{
    window_ = std::make_unique<QDialog>(nullptr, Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                                                     Qt::WindowSystemMenuHint | Qt::WindowMinimizeButtonHint |
                                                     Qt::WindowCloseButtonHint);
    // This window does not keep the program running.
    window_->setAttribute(Qt::WA_QuitOnClose, false);
    Ui::WPreferences ui;
    ui.setupUi(window_.get());
    setMatrixRTO(ui.matrixRTO);
    setMatrixQuery(ui.matrixQuery);
    setMatrixUserAgent(ui.matrixUserAgent);
    for (int row = 0; row < static_cast<int>(userAgents.size()); ++row) {
        matrixUserAgent_->cellAt(row, 0)->setToolTip(userAgents.at(static_cast<std::size_t>(row)));
    }
    for (const QPushButton *button : {ui.cancelButton, ui.saveButton}) {
        connect(button, &QPushButton::clicked, this, [this, button] { buttonAction(button); });
    }
    awakeFromNib();
}
