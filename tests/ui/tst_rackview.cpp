#include "favourites/valuetransformers.h"
#include "ui/rack/rackview.h"
#include "ui/widgets/starlevel.h"

#include <QApplication>
#include <QDropEvent>
#include <QMimeData>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {
using Indexes = QList<qsizetype>;

const QString ownType = u"application/x-test"_s;
constexpr auto none = Qt::NoModifier;
constexpr auto control = Qt::ControlModifier;
constexpr auto shift = Qt::ShiftModifier;
/// On a tile, beside its artwork and its buttons.
constexpr QPoint onName(8, 116);

struct Recorder : RackView::Delegate
{
    void doubleClickRVImage(RVImageView *) override { calls << u"double click"_s; }
    void itemButtonAction(QAbstractButton *sender) override { calls << sender->property("tag").toString(); }
    /// Refuses every drag: there is no pointer that would end one.
    bool collectionViewWriteItemsAtIndexes(RackView *, const Indexes &indexes, QMimeData &) override
    {
        QDebug(&calls.emplaceBack()) << indexes;
        return false;
    }
    Qt::DropAction collectionViewValidateDrop(RackView *, const QMimeData &, qsizetype) override
    {
        return Qt::CopyAction;
    }
    bool collectionViewAcceptDrop(RackView *, const QMimeData &, qsizetype index) override
    {
        calls << u"drop %1"_s.arg(index);
        return taken;
    }

    QStringList calls;
    bool taken = true;
};

/// Three tiles in a row, about one row and a half in view.
struct DrivenRack : RackView
{
    explicit DrivenRack(int stations)
    {
        for (int i = 0; i < stations; ++i) {
            rack.addObject(std::make_shared<RadioModel>());
            rack.radioItemCollectionArray().last()->setName(u"Station %1"_s.arg(i));
        }
        setRack(&rack, transformers);
        setDelegate(&delegate);
        registerForDraggedTypes({ownType});
        resize(520, 300);
        show();
        Q_UNUSED(QTest::qWaitForWindowActive(this));
    }
    const QObject *originOf(const QDropEvent &) const override { return origin; }

    qsizetype made() const { return viewport()->findChildren<RackItem *>().size(); }
    bool sees(qsizetype index)
    {
        return itemAtIndex(index) != nullptr && viewport()->rect().contains(itemAtIndex(index)->geometry());
    }
    /// Presses the left button, moves the pointer far away and comes back to let go.
    static void drag(QWidget *from, const QPoint &at)
    {
        QTest::mousePress(from, Qt::LeftButton, none, at);
        const QPoint away = at + QPoint(40, 0);
        QMouseEvent move(QEvent::MouseMove, away, from->mapToGlobal(away), Qt::NoButton, Qt::LeftButton,
                         none);
        QApplication::sendEvent(from, &move);
        QTest::mouseRelease(from, Qt::LeftButton, none, at);
    }
    bool offers(const QString &type, QEvent::Type kind)
    {
        QMimeData pasteboard;
        pasteboard.setData(type, "x");
        const QPoint pointer = itemAtIndex(1)->geometry().center() + QPoint(10, 0);
        if (kind == QEvent::Drop) {
            QDropEvent drop(pointer, Qt::CopyAction, &pasteboard, Qt::LeftButton, none);
            dropEvent(&drop);
            return drop.isAccepted();
        }
        QDragEnterEvent enter(pointer, Qt::CopyAction, &pasteboard, Qt::LeftButton, none);
        QApplication::sendEvent(viewport(), &enter);
        return enter.isAccepted();
    }

    FavouritesRack rack;
    ValueTransformers transformers;
    Recorder delegate;
    const QObject *origin = nullptr;
};
} // namespace

class TestRackView : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void gridFindsGapsAndSteps();
    void tilesFollowTheirStations();
    void mouseAndKeysSelect();
    void artworkAndButtonsKeepTheirPresses();
    void onlyOwnRegisteredDropsAreTaken();
};

/// Tiles of 100 x 100, three in a row, 10 between them and around; seven of them.
void TestRackView::gridFindsGapsAndSteps()
{
    const std::tuple<QPoint, qsizetype, QPoint> gaps[] = {
        {{20, 50}, 0, {3, 10}},     {{70, 50}, 1, {113, 10}},    {{115, 50}, 1, {113, 10}},
        {{300, 50}, 3, {333, 10}},  {{339, 114}, 3, {333, 10}},  {{20, 130}, 3, {3, 120}},
        {{20, 250}, 6, {3, 230}},   {{100, 250}, 7, {113, 230}}, {{330, 250}, 7, {113, 230}},
        {{20, 900}, 7, {113, 230}}, {{20, -50}, 0, {3, 10}},     {{-30, 150}, 3, {3, 120}},
    };
    TileGrid grid{.tile = {100, 100}, .spacing = 10, .margins = {10, 10, 10, 10}, .width = 340, .count = 7};
    for (const auto &[pointer, gap, mark] : gaps) {
        grid.direction = Qt::LeftToRight;
        QCOMPARE(grid.gapAt(pointer), gap);
        QCOMPARE(grid.markOf(gap, pointer), QRect(mark, QSize(4, 100)));
        grid.direction = Qt::RightToLeft;
        const QPoint mirrored(grid.width - 1 - pointer.x(), pointer.y());
        QCOMPARE(grid.gapAt(mirrored), gap);
        QCOMPARE(grid.markOf(gap, mirrored), QRect(grid.width - mark.x() - 4, mark.y(), 4, 100));
    }
    QCOMPARE(grid.neighbour(1, TileStep::left, 100), 2);
    grid.direction = Qt::LeftToRight;
    using enum TileStep;
    const std::tuple<qsizetype, TileStep, qsizetype> steps[] = {
        {0, left, 0}, {2, right, 3},    {6, right, 6},  {1, up, 1},    {5, down, 6},
        {6, up, 3},   {1, pageDown, 6}, {6, pageUp, 0}, {3, first, 0}, {3, last, 6},
    };
    for (const auto &[from, step, to] : steps) {
        QCOMPARE(grid.neighbour(from, step, 230), to);
    }
    QCOMPARE(grid.indexesWithin(0, 9), TileRange());
    QCOMPARE(grid.indexesWithin(109, 120), (TileRange{0, 6}));
    QCOMPARE(grid.indexesWithin(5000, 6000), (TileRange{7, 7}));
    grid.width = 0;
    grid.count = 0;
    QCOMPARE(grid.columns(), 1);
    QCOMPARE(grid.gapAt({500, 500}), 0);
}

void TestRackView::tilesFollowTheirStations()
{
    DrivenRack view(1000);
    QVERIFY(view.made() >= 6 && view.made() <= 12 && view.itemAtIndex(500) == nullptr);
    view.scrollToIndex(500);
    QCOMPARE(view.itemAtIndex(500)->accessibleName(), u"Station 500"_s);
    QVERIFY(view.sees(500) && view.itemAtIndex(0) == nullptr && view.made() <= 12);

    StationRecord station = view.rack.radioItemCollectionArray().at(500);
    RackItem *tile = view.itemAtIndex(500);
    view.rack.setSelectionIndexes({500});
    view.rack.removeObjectAtArrangedObjectIndex(500);
    view.rack.insertObjectAtArrangedObjectIndex(station, 502);
    view.rack.rearrangeObjects();
    QCOMPARE(view.itemAtIndex(502), tile);
    QCOMPARE(view.currentIndex(), 502);
    QVERIFY(tile->isSelected() && !view.itemAtIndex(500)->isSelected());

    for (const auto &[stored, stars] : {std::pair<QVariant, int>{4, 4}, {99.5, 5}, {-1, 0}, {qQNaN(), 0}}) {
        view.rack.setValue(station, RadioField::stars, stored);
        QCOMPARE(tile->stars()->value(), stars);
    }
    view.rack.setValue(station, RadioField::name, u"New\nname"_s);
    QCOMPARE(tile->playButton()->accessibleName(), u"Play New name"_s);

    view.rack.setRadioItemCollectionArray({station, station});
    QVERIFY(view.itemAtIndex(0) != view.itemAtIndex(1));
    view.rack.setRadioItemCollectionArray({});
    // The view keeps no reference to a station that has been removed.
    const std::weak_ptr<RadioModel> gone = std::exchange(station, nullptr);
    QVERIFY(gone.expired() && view.itemAtIndex(0) == nullptr && !tile->isVisible());
    QCOMPARE(view.currentIndex(), -1);
}

void TestRackView::mouseAndKeysSelect()
{
    DrivenRack view(9);
    const std::tuple<qsizetype, Qt::KeyboardModifiers, Indexes> clicks[] = {
        {1, none, {1}},
        {3, control, {1, 3}},
        {5, shift, {3, 4, 5}},
        {0, shift | control, {0, 1, 2, 3, 4, 5}},
        {4, control, {0, 1, 2, 3, 5}},
        {2, none, {2}},
    };
    for (const auto &[index, modifiers, selected] : clicks) {
        QTest::mouseClick(view.itemAtIndex(index), Qt::LeftButton, modifiers, onName);
        QCOMPARE(view.rack.selectionIndexes(), selected);
        QCOMPARE(view.currentIndex(), index);
        QCOMPARE(view.itemAtIndex(4)->isSelected(), selected.contains(4));
    }
    QContextMenuEvent menuKey(QContextMenuEvent::Keyboard, {}, {});
    QContextMenuEvent rightClick(QContextMenuEvent::Mouse, view.itemAtIndex(0)->pos() + onName, {7, 7});
    QSignalSpy menu(&view, &RackView::contextMenuRequested);
    for (QContextMenuEvent *event : {&menuKey, &rightClick}) {
        QApplication::sendEvent(view.viewport(), event);
    }
    QCOMPARE(menu.value(1).value(0), QVariant(QPoint(7, 7)));
    QCOMPARE(view.rack.selectionIndexes(), Indexes{0});

    const std::tuple<Qt::Key, Qt::KeyboardModifiers, Indexes> keys[] = {
        {Qt::Key_Right, none, {1}},    {Qt::Key_Down, none, {4}},
        {Qt::Key_Left, shift, {3, 4}}, {Qt::Key_End, shift, {4, 5, 6, 7, 8}},
        {Qt::Key_Home, none, {0}},     {Qt::Key_PageDown, none, {3}},
        {Qt::Key_Down, control, {3}},  {Qt::Key_Space, control, {3, 6}},
    };
    for (const auto &[key, modifiers, selected] : keys) {
        QTest::keyClick(&view, key, modifiers);
        QCOMPARE(view.rack.selectionIndexes(), selected);
        QVERIFY(view.sees(view.currentIndex()));
    }
    QSignalSpy activated(&view, &RackView::activated);
    QTest::keyClick(&view, Qt::Key_Return);
    QCOMPARE(activated.value(0).value(0).toInt(), 6);
    // Tab goes on to the buttons of that tile, where Enter is theirs.
    QTest::keyClick(&view, Qt::Key_Tab);
    QTest::keyClick(view.itemAtIndex(6)->detailsButton(), Qt::Key_Return);
    QCOMPARE(view.delegate.calls, QStringList{u"100"_s});
    QVERIFY(view.itemAtIndex(6)->detailsButton()->hasFocus());
    view.scrollToIndex(0);
    QTest::mouseClick(view.viewport(), Qt::LeftButton, none, QPoint(2, 2));
    QCOMPARE(view.rack.selectionIndexes(), Indexes());
}

void TestRackView::artworkAndButtonsKeepTheirPresses()
{
    DrivenRack view(6);
    RackItem *tile = view.itemAtIndex(1);
    const auto work = [&] {
        DrivenRack::drag(tile->artwork(), QPoint(20, 20));
        DrivenRack::drag(tile->detailsButton(), QPoint(4, 4));
        QTest::mouseDClick(tile->artwork(), Qt::LeftButton);
        QTest::mouseClick(tile->playButton(), Qt::LeftButton);
    };
    work();
    QCOMPARE(view.rack.selectionIndexes(), Indexes());
    view.rack.setSelectionIndexes({0, 2});
    DrivenRack::drag(view.itemAtIndex(2), onName);
    DrivenRack::drag(tile, onName);
    QCOMPARE(view.rack.selectionIndexes(), Indexes{1});
    view.setDelegate(nullptr);
    work();
    QCOMPARE(view.delegate.calls.join(u' '), u"double click 101 QList(0, 2)  QList(1) "_s);
}

/// Only drags that begin in this program are taken, and of those only registered types.
void TestRackView::onlyOwnRegisteredDropsAreTaken()
{
    DrivenRack view(6);
    const auto shown = [&] { return view.grab().toImage(); };
    const QImage before = shown();
    QVERIFY(!view.offers(ownType, QEvent::DragEnter) && !view.offers(ownType, QEvent::Drop));
    view.origin = this;
    QVERIFY(!view.offers(u"text/plain"_s, QEvent::DragEnter) && !view.offers(u"text/plain"_s, QEvent::Drop));
    QCOMPARE(shown(), before);
    QVERIFY(view.offers(ownType, QEvent::DragEnter));
    QVERIFY(shown() != before);
    QVERIFY(view.offers(ownType, QEvent::Drop));
    QCOMPARE(shown(), before);
    view.delegate.taken = false;
    QVERIFY(!view.offers(ownType, QEvent::Drop));
    QCOMPARE(view.delegate.calls, (QStringList{u"drop 2"_s, u"drop 2"_s}));
}

QTEST_MAIN(TestRackView)
#include "tst_rackview.moc"
