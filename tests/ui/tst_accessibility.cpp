#include "favourites/valuetransformers.h"
#include "ui/panels/shortcutswindow.h"
#include "ui/rack/rackaccessibility.h"
#include "ui/rack/rackview.h"

#include <QAccessible>
#include <QAction>
#include <QMenuBar>
#include <QSignalSpy>
#include <QTableWidget>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {
StationRecord named(const QString &name)
{
    auto station = std::make_shared<RadioModel>();
    station->setName(name);
    return station;
}

struct Recorder : RackView::Delegate
{
    void doubleClickRVImage(RVImageView *) override {}
    void itemButtonAction(QAbstractButton *sender) override { pressed = sender->accessibleName(); }
    bool collectionViewWriteItemsAtIndexes(RackView *, const QList<qsizetype> &, QMimeData &) override
    {
        return false;
    }
    Qt::DropAction collectionViewValidateDrop(RackView *, const QMimeData &, qsizetype) override
    {
        return Qt::IgnoreAction;
    }
    bool collectionViewAcceptDrop(RackView *, const QMimeData &, qsizetype) override { return false; }

    QString pressed;
};

/// A rack of 400 stations, of which a few are in view.
struct LongRack
{
    LongRack()
    {
        for (int i = 0; i < 400; ++i) {
            rack.addObject(named(u"Station %1"_s.arg(i)));
        }
        // An assistive program may ask before there is a rack.
        view = std::make_unique<RackView>();
        QCOMPARE(list()->childCount(), 0);
        view->setRack(&rack, transformers);
        view->setDelegate(&delegate);
        view->resize(520, 300);
        view->show();
        Q_UNUSED(QTest::qWaitForWindowActive(view.get()));
    }
    QAccessibleInterface *list() { return QAccessible::queryAccessibleInterface(view.get()); }
    QAccessible::Id idOf(int index) { return QAccessible::uniqueId(list()->child(index)); }
    static QString nameOf(const QAccessibleInterface *thing) { return thing->text(QAccessible::Name); }
    static void act(QAccessibleInterface *thing, const QString &name)
    {
        QVERIFY(thing->actionInterface()->actionNames().contains(name));
        thing->actionInterface()->doAction(name);
    }

    FavouritesRack rack;
    ValueTransformers transformers;
    Recorder delegate;
    std::unique_ptr<RackView> view;
};
} // namespace

class TestAccessibility : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { installRackAccessibility(); }
    void rackIsAListOfAllStations();
    void childrenStandForStations();
    void childrenAct();
    void shortcutsAreThoseOfTheMenus();
};

void TestAccessibility::rackIsAListOfAllStations()
{
    LongRack fixture;
    fixture.rack.setSelectionIndexes({399});
    const QAccessibleInterface *list = fixture.list();
    QCOMPARE(list->role(), QAccessible::List);
    QCOMPARE(list->childCount(), 400);
    const QAccessibleInterface *last = list->child(399);
    QCOMPARE(last->role(), QAccessible::ListItem);
    QCOMPARE(LongRack::nameOf(last), u"Station 399"_s);
    QVERIFY(last->state().offscreen && last->state().selected && last->childCount() == 0);
    QVERIFY(fixture.view->viewport()->findChildren<RackItem *>().size() < 20);

    const QAccessibleInterface *first = list->child(0);
    QVERIFY(!first->state().offscreen && !first->state().selected);
    QCOMPARE(LongRack::nameOf(first->child(1)), u"Play Station 0"_s);
    QCOMPARE(first->child(1)->parent(), first);
    const QPoint middle = first->rect().center();
    QCOMPARE(list->childAt(middle.x(), middle.y()), first);
    QCOMPARE(list->indexOfChild(last), 399);
}

/// A child that is held stands for the same station wherever that is moved, and for none once it is removed.
void TestAccessibility::childrenStandForStations()
{
    LongRack fixture;
    const QAccessible::Id kept = fixture.idOf(3);
    const QAccessible::Id gone = fixture.idOf(1);
    fixture.rack.removeObjectAtArrangedObjectIndex(1);
    fixture.rack.insertObjectAtArrangedObjectIndex(named(u"New"_s), 0);
    fixture.rack.rearrangeObjects();
    QCOMPARE(fixture.idOf(3), kept);
    QCOMPARE(LongRack::nameOf(fixture.list()->child(0)), u"New"_s);
    QVERIFY(QAccessible::accessibleInterface(gone) == nullptr);

    const StationRecord moved = fixture.rack.radioItemCollectionArray().at(3);
    fixture.rack.removeObjectAtArrangedObjectIndex(3);
    fixture.rack.insertObjectAtArrangedObjectIndex(moved, 200);
    fixture.rack.rearrangeObjects();
    QCOMPARE(fixture.idOf(200), kept);

    fixture.rack.setRadioItemCollectionArray({});
    // Asked before the view has dealt with the change of the rack.
    QAccessibleInterface *held = QAccessible::accessibleInterface(kept);
    QVERIFY(held->state().invalid);
    held->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    QTRY_VERIFY(QAccessible::accessibleInterface(kept) == nullptr);

    fixture.rack.addObject(named(u"Other"_s));
    fixture.rack.rearrangeObjects();
    const QAccessible::Id child = fixture.idOf(0);
    const QAccessible::Id list = QAccessible::uniqueId(fixture.list());
    fixture.view.reset();
    QVERIFY(QAccessible::accessibleInterface(child) == nullptr);
    QVERIFY(QAccessible::accessibleInterface(list) == nullptr);
}

void TestAccessibility::childrenAct()
{
    LongRack fixture;
    QSignalSpy activated(fixture.view.get(), &RackView::activated);
    QAccessibleInterface *child = fixture.list()->child(300);
    LongRack::act(child, QAccessibleActionInterface::pressAction());
    QCOMPARE(activated.value(0).value(0).toInt(), 300);
    LongRack::act(child, QAccessibleActionInterface::toggleAction());
    QCOMPARE(fixture.rack.selectionIndexes(), QList<qsizetype>{300});
    LongRack::act(child, u"Details"_s);
    QCOMPARE(fixture.delegate.pressed, u"Details of Station 300"_s);
    LongRack::act(fixture.list()->child(301), QAccessibleActionInterface::setFocusAction());
    QCOMPARE(fixture.list()->focusChild(), fixture.list()->child(301));
    QVERIFY(fixture.list()->child(301)->state().focused);
}

void TestAccessibility::shortcutsAreThoseOfTheMenus()
{
    QWidget window;
    QMenuBar bar;
    QMenu *menu = bar.addMenu(u"&Rock && Roll"_s);
    menu->addAction(u"Without"_s);
    menu->addAction(u"&First..."_s)->setShortcut(u"Ctrl+1"_s);
    ShortcutsWindow shortcuts(bar, &window);
    auto *table = shortcuts.findChild<QTableWidget *>();
    shortcuts.show();
    menu->addAction(u"Second"_s)->setShortcuts({u"Ctrl+2"_s, u"F2"_s});
    shortcuts.close();
    shortcuts.show();
    QCOMPARE(table->item(0, 0)->text(), u"Rock & Roll"_s);
    QCOMPARE(table->item(1, 0)->text() + table->item(1, 1)->text(), u"FirstCtrl+1"_s);
    QCOMPARE(table->item(2, 0)->text() + table->item(2, 1)->text(), u"SecondCtrl+2 or F2"_s);
    QTest::keyClick(table, Qt::Key_Escape);
    QVERIFY(!shortcuts.isVisible());
}

QTEST_MAIN(TestAccessibility)
#include "tst_accessibility.moc"
