#include "ui/table/tablecolumns.h"

#include "settings/statefile.h"
#include "ui/table/stationtable.h"

#include <QHeaderView>
#include <QResizeEvent>
#include <QScopedValueRollback>
#include <algorithm>
#include <array>

namespace {
constexpr QLatin1StringView orderKey("columns/order");
/// In logical pixels, as all widths here. Wider than any screen.
constexpr int widestColumn = 4000;

/// The width of a column: its share of what all columns with a share have together, within limits. The last
/// column has no entry: it takes the rest.
struct Width
{
    int least;
    int most;
    qreal part;
};

/// From the status dot to the listeners.
constexpr std::array<Width, 6> usualWidths{
    {{40, 40, 0}, {112, 320, 0.4}, {64, 160, 0.2}, {72, 72, 0}, {112, 112, 0}, {96, 96, 0}}};

QString widthKey(const QString &identifier)
{
    return QLatin1StringView("columns/") + identifier;
}

QStringList sorted(QStringList texts)
{
    texts.sort();
    return texts;
}
} // namespace

TableColumns::TableColumns(QHeaderView &header, StateFile &state, QObject *parent)
    : QObject(parent)
    , header_(header)
    , state_(state)
{
    for (int section = 0; section < header_.count(); ++section) {
        identifiers_.append(header_.model()
                                ->headerData(section, header_.orientation(), StationTable::identifierRole)
                                .toString());
    }
    header_.setSectionResizeMode(0, QHeaderView::Fixed);
    header_.setStretchLastSection(true);
    header_.setSectionsMovable(true);
    header_.setFirstSectionMovable(false);
    restoreOrder();
    shared_ = !restoreWidths();
    share(header_.viewport()->width());
    header_.viewport()->installEventFilter(this);
    connect(&header_, &QHeaderView::sectionMoved, this, &TableColumns::keepOrder);
    connect(&header_, &QHeaderView::sectionResized, this, [this](int section) {
        // Neither the columns' shares nor the last one's rest are set by the user.
        if (!sharing_ && header_.visualIndex(section) != header_.count() - 1) {
            shared_ = false;
            keepWidths();
        }
    });
}

bool TableColumns::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Resize) {
        share(static_cast<QResizeEvent *>(event)->size().width());
    }
    return QObject::eventFilter(watched, event);
}

void TableColumns::restoreOrder()
{
    // An order of other columns than these, or one that begins with another column, is ignored.
    const QStringList order = state_.texts(orderKey);
    if (sorted(order) == sorted(identifiers_) && order.constFirst() == identifiers_.constFirst()) {
        for (int place = 1; place < header_.count(); ++place) {
            header_.moveSection(header_.visualIndex(static_cast<int>(identifiers_.indexOf(order.at(place)))),
                                place);
        }
    }
}

bool TableColumns::restoreWidths()
{
    bool restored = false;
    for (int section = 1; section < header_.count(); ++section) {
        if (const int width = state_.integer(widthKey(identifiers_.at(section)), 0); width > 0) {
            header_.resizeSection(section, std::clamp(width, header_.minimumSectionSize(), widestColumn));
            restored = true;
        }
    }
    return restored;
}

void TableColumns::keepOrder()
{
    QStringList order;
    for (int place = 0; place < header_.count(); ++place) {
        order.append(identifiers_.at(header_.logicalIndex(place)));
    }
    state_.setValue(orderKey, order);
}

void TableColumns::keepWidths()
{
    for (int place = 1; place < header_.count() - 1; ++place) {
        const int section = header_.logicalIndex(place);
        state_.setValue(widthKey(identifiers_.at(section)), header_.sectionSize(section));
    }
}

void TableColumns::share(int width)
{
    if (!shared_) {
        return;
    }
    const QScopedValueRollback sharing(sharing_, true);
    for (const Width &usual : usualWidths) {
        width -= usual.part > 0 ? 0 : usual.most;
    }
    for (std::size_t section = 0; section < usualWidths.size(); ++section) {
        const auto [least, most, part] = usualWidths.at(section);
        header_.resizeSection(static_cast<int>(section), std::clamp(qRound(part * width), least, most));
    }
}
