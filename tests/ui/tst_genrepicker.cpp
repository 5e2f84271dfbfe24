#include "base/exception.h"
#include "base/keyedcoder.h"
#include "support/clickseries.h"
#include "ui/genres/genreaccessibility.h"
#include "ui/genres/genregrid.h"
#include "ui/genres/genreobject.h"
#include "ui/widgets/look.h"
#include "ui/widgets/starlevel.h"

#include <QAccessible>
#include <QApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLineEdit>
#include <QSet>
#include <QTest>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {
struct MapCoder final : KeyedEncoder, KeyedDecoder
{
    void encodeObject(const QVariant &value, QLatin1StringView key) override { map.insert(key, value); }
    QVariant decodeObject(QLatin1StringView key) const override { return map.value(key); }
    QVariantMap map;
};

GenreRecords genresNamed(const QStringList &names)
{
    QJsonArray elements;
    for (const QString &name : names) {
        elements.append(QJsonObject{{u"name"_s, name}, {u"stars"_s, 3}});
    }
    return Genre::listFromJson(elements);
}

/// A picker as in the window, and the names that it passes on.
struct Picker : GenreObjectDelegate
{
    explicit Picker(const QStringList &names = {u"Rock"_s, u"Jazz"_s, u"Música"_s, u"Hip Hop"_s,
                                                u"Hard Rock"_s, u"Pop"_s})
        : controller(new GenreObject(&grid, &window))
    {
        auto *layout = new QVBoxLayout(&window);
        layout->addWidget(&field);
        layout->addWidget(&grid);
        layout->addWidget(&after);
        grid.setFilterField(&field);
        controller->setDelegate(this);
        list().setDataSource(genresNamed(names));
        window.resize(220, 300);
        window.show();
        window.activateWindow();
        Q_UNUSED(QTest::qWaitForWindowActive(&window));
    }
    void genreObjectReceiveName(const QString &name) override { told.append(name); }
    GenreList &list() { return *controller->arrayController(); }
    void click(qsizetype index) { clickSeries(*grid.madeItemAtIndex(index), {1}); }

    QWidget window;
    QLineEdit field;
    GenreGrid grid;
    QLineEdit after;
    GenreObject *controller;
    QStringList told;
};
} // namespace

class TestGenrePicker : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        applyLook(*qApp);
        installGenreAccessibility();
    }
    void codingIsLopsided();
    void elementsBecomeGenres_data();
    void elementsBecomeGenres();
    void resourceFillsThePicker();
    void tilesCountClicks();
    void clickSelectsAndTells();
    void filterHidesWithoutRenumbering_data();
    void filterHidesWithoutRenumbering();
    void keysMoveAndPick_data();
    void keysMoveAndPick();
    void gridWraps();
    void assistiveProgramsPick();
};

void TestGenrePicker::codingIsLopsided()
{
    Genre genre;
    QCOMPARE(genre.name(), QVariant(u"genre"_s));
    QCOMPARE(genre.label(), QVariant(u"Genre"_s));
    QVERIFY(!genre.type().isValid() && !genre.stars().isValid());
    genre.setName(u"Jazz"_s);
    genre.setType(7);
    genre.setStars(4);
    MapCoder coder;
    genre.encodeWithCoder(coder);
    QCOMPARE(coder.map, (QVariantMap{{u"name"_s, u"Jazz"_s}, {u"type"_s, u"Jazz"_s}, {u"stars"_s, 4}}));
    const GenreRecord decoded = Genre::initWithCoder(coder);
    QCOMPARE(decoded->name(), genre.name());
    QCOMPARE(decoded->type(), genre.name());
    QCOMPARE(decoded->stars(), genre.stars());
    QVERIFY(!decoded->label().isValid());

    coder.map = {{u"label"_s, u"kept"_s}};
    const GenreRecord sparse = Genre::initWithCoder(coder);
    QCOMPARE(sparse->label(), QVariant(u"kept"_s));
    QVERIFY(!sparse->name().isValid() && !sparse->type().isValid() && !sparse->stars().isValid());
}

void TestGenrePicker::elementsBecomeGenres_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QStringList>("genres");
    const auto row = [](const char *json, const QStringList &genres) {
        QTest::newRow(json) << QByteArray(json) << genres;
    };
    row("[]", {});
    row(R"([{"name": "a"}, {"name": "b", "type": 3, "stars": 4}])", {u"a Genre - -"_s, u"b Shoutcast 3 4"_s});
    row(R"([{"name": "a", "type": null, "stars": 2.5}])", {u"a Shoutcast  2.5"_s});
    row(R"([7, "x", null, [{"name": "n"}], {"name": "a"}])", {u"a Genre - -"_s});
    row(R"([{}, {"name": true}, {"name": 80}, {"name": ""}])",
        {u"(none) Genre - -"_s, u"(none) Genre - -"_s, u"80 Genre - -"_s, u" Genre - -"_s});
    row(R"([{"name": "a", "stars": "many", "type": {"b": 1}}])", {u"a Shoutcast  many"_s});
}

void TestGenrePicker::elementsBecomeGenres()
{
    QFETCH(QByteArray, json);
    const auto shown = [](const QVariant &value) { return value.isValid() ? value.toString() : u"-"_s; };
    QStringList genres;
    for (const GenreRecord &genre : Genre::listFromJson(QJsonDocument::fromJson(json).array())) {
        const QString name = genre->nameText().isNull() ? u"(none)"_s : genre->nameText();
        genres.append(name + u' ' + shown(genre->label()) + u' ' + shown(genre->type()) + u' ' +
                      shown(genre->stars()));
        // Any value can be drawn.
        GenreBox(genre).grab();
    }
    QTEST(genres, "genres");
}

void TestGenrePicker::resourceFillsThePicker()
{
    Picker picker;
    picker.controller->awakeFromNib();
    QStringList names;
    for (const GenreRecord &genre : picker.list().dataSource()) {
        names.append(genre->nameText());
        QCOMPARE(genre->label(), QVariant(u"Shoutcast"_s));
        QVERIFY(StarLevel::starsOf(genre->stars()) > 0);
        // The directory gets the name as it is but for its blanks.
        QVERIFY2(!names.last().contains(u'&') && !names.last().contains(u'+'), qPrintable(names.last()));
    }
    QCOMPARE(names.mid(0, 2), (QStringList{u"Trending 500"_s, u"Random Stations"_s}));
    QVERIFY(names.size() > 50);
    QCOMPARE(QSet<QString>(names.cbegin(), names.cend()).size(), names.size());
    QCOMPARE(picker.grid.numberOfItems(), names.size());
    // There are no tiles for genres out of view.
    QVERIFY(picker.grid.itemAtIndex(0) != nullptr);
    QVERIFY(picker.grid.itemAtIndex(names.size() - 1) == nullptr);

    Q_CLEANUP_RESOURCE(plumtide);
    QVERIFY_THROWS_EXCEPTION(Exception, picker.controller->awakeFromNib());
    Q_INIT_RESOURCE(plumtide);
    QCOMPARE(picker.grid.numberOfItems(), 0);
}

void TestGenrePicker::tilesCountClicks()
{
    struct Series
    {
        QList<quint64> pauses;
        Qt::MouseButton button;
        qsizetype picks;
    };
    const Series table[] = {
        {{1}, Qt::LeftButton, 1},       {{1, 100}, Qt::LeftButton, 1},  {{1, 100, 100}, Qt::LeftButton, 1},
        {{1, 2000}, Qt::LeftButton, 2}, {{1, 100}, Qt::RightButton, 0},
    };
    for (const auto &[pauses, button, picks] : table) {
        Picker picker;
        const int accepted = clickSeries(*picker.grid.itemAtIndex(1), pauses, button);
        QCOMPARE(accepted, button == Qt::LeftButton ? pauses.size() : 0);
        QCOMPARE(picker.told, QStringList(picks, u"Jazz"_s));
    }
}

void TestGenrePicker::clickSelectsAndTells()
{
    Picker picker({u"a"_s, u"a"_s, u"b"_s});
    // Two genres of the same name are told apart.
    for (const qsizetype index : {1, 2, 2}) {
        picker.click(index);
        QCOMPARE(picker.list().selectionIndex(), index);
        for (qsizetype other = 0; other < 3; ++other) {
            QCOMPARE(picker.grid.itemAtIndex(other)->isSelected(), other == index);
        }
    }
    // A box inside a tile counts as the tile; one elsewhere is none of the list.
    GenreBox inside(genresNamed({u"inside"_s}).first(), picker.grid.itemAtIndex(0));
    picker.controller->boxClicked(&inside);
    GenreBox outside(genresNamed({u"outside"_s}).first());
    picker.controller->boxClicked(&outside);
    QCOMPARE(picker.list().selectionIndex(), 0);
    QCOMPARE(picker.told, (QStringList{u"a"_s, u"b"_s, u"b"_s, u"a"_s}));

    picker.list().dataSource().at(1)->setName({});
    picker.click(1);
    QVERIFY(picker.told.last().isNull());
    picker.controller->setDelegate(nullptr);
    picker.click(2);
    QCOMPARE(picker.list().selectionIndex(), 2);
    QCOMPARE(picker.told.size(), 5);
}

void TestGenrePicker::filterHidesWithoutRenumbering_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QList<qsizetype>>("shown");
    QTest::newRow("part, other case") << u"ROCK"_s << QList<qsizetype>{0, 4};
    QTest::newRow("accents") << u"musi"_s << QList<qsizetype>{2};
    QTest::newRow("blanks and hyphens") << u"h-i p"_s << QList<qsizetype>{3};
    QTest::newRow("blanks alone") << u"  "_s << QList<qsizetype>{0, 1, 2, 3, 4, 5};
    QTest::newRow("none") << u"q"_s << QList<qsizetype>{};
}

void TestGenrePicker::filterHidesWithoutRenumbering()
{
    QFETCH(QString, text);
    QFETCH(QList<qsizetype>, shown);
    Picker picker;
    picker.click(1);
    picker.field.setText(text);
    QCOMPARE(picker.grid.shownIndexes(), shown);
    QCOMPARE(picker.list().selectionIndex(), 1);
    for (qsizetype index = 0; index < picker.grid.numberOfItems(); ++index) {
        QCOMPARE(picker.grid.itemAtIndex(index)->isVisible(), shown.contains(index));
    }
    if (!shown.isEmpty()) {
        picker.click(shown.last());
        QCOMPARE(picker.list().selectionIndex(), shown.last());
        QCOMPARE(picker.told.last(), picker.list().dataSource().at(shown.last())->nameText());
    }
    QTest::keyClick(&picker.field, Qt::Key_Escape);
    QCOMPARE(picker.grid.shownIndexes().size(), 6);
    QVERIFY(picker.grid.itemAtIndex(0)->isVisible());
}

void TestGenrePicker::keysMoveAndPick_data()
{
    QTest::addColumn<QList<int>>("keys");
    QTest::addColumn<qsizetype>("current");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("picked");
    const auto row = [](const char *name, const QList<int> &keys, qsizetype current,
                        const QString &typed = {}, const QString &picked = {}) {
        QTest::newRow(name) << keys << current << typed << picked;
    };
    // The focus begins in the filter.
    row("down into the tiles", {Qt::Key_Down}, 0);
    row("down and on", {Qt::Key_Down, Qt::Key_Down, Qt::Key_Enter}, 1, {}, u"Jazz"_s);
    row("to the end and not beyond", {Qt::Key_Down, Qt::Key_End, Qt::Key_Down}, 5);
    row("and back", {Qt::Key_Down, Qt::Key_End, Qt::Key_Home}, 0);
    row("pages", {Qt::Key_Down, Qt::Key_PageDown, Qt::Key_PageUp}, 0);
    row("up into the filter", {Qt::Key_Down, Qt::Key_Up, Qt::Key_H}, -1, u"h"_s);
    row("among those shown", {Qt::Key_R, Qt::Key_O, Qt::Key_Down, Qt::Key_Down, Qt::Key_Return}, 4, u"ro"_s,
        u"Hard Rock"_s);
    row("enter with one", {Qt::Key_J, Qt::Key_Return}, 1, u"j"_s, u"Jazz"_s);
    row("enter with its very name", {Qt::Key_R, Qt::Key_O, Qt::Key_C, Qt::Key_K, Qt::Key_Return}, 0,
        u"rock"_s, u"Rock"_s);
    row("enter with several", {Qt::Key_R, Qt::Key_O, Qt::Key_Return}, 0, u"ro"_s);
    row("enter with none", {Qt::Key_Q, Qt::Key_Return}, -1, u"q"_s);
    row("letters in the tiles", {Qt::Key_Down, Qt::Key_P, Qt::Key_O}, -1, u"po"_s);
    row("escape in the tiles", {Qt::Key_P, Qt::Key_Down, Qt::Key_Escape}, 3);
    row("no letters", {Qt::Key_Down, Qt::Key_Space, Qt::Key_F5}, 0);
    row("tab leaves", {Qt::Key_Down, Qt::Key_Tab, Qt::Key_R}, 0);
}

void TestGenrePicker::keysMoveAndPick()
{
    QFETCH(QList<int>, keys);
    Picker picker;
    QTRY_VERIFY(picker.window.isActiveWindow());
    picker.field.setFocus();
    for (const int key : keys) {
        QTest::keyClick(QApplication::focusWidget(), static_cast<Qt::Key>(key));
    }
    QTEST(picker.grid.currentIndex(), "current");
    QTEST(picker.field.text(), "typed");
    QTEST(picker.told.join(u','), "picked");
    for (qsizetype index = 0; index < picker.grid.numberOfItems(); ++index) {
        const GenreBox *tile = picker.grid.itemAtIndex(index);
        QCOMPARE(tile->isCurrent(), picker.grid.hasFocus() && index == picker.grid.currentIndex());
    }
}

void TestGenrePicker::gridWraps()
{
    Picker picker;
    const auto place = [&](qsizetype index) { return picker.grid.itemAtIndex(index)->geometry(); };
    QVERIFY(place(1).y() > place(0).y());
    picker.window.resize(700, 300);
    QCOMPARE(place(1).y(), place(0).y());
    QVERIFY(place(1).x() > place(0).x());
    picker.window.setLayoutDirection(Qt::RightToLeft);
    QVERIFY(place(1).x() < place(0).x());

    // The current tile is brought into view.
    picker.window.resize(220, 200);
    picker.list().setDataSource(genresNamed(QStringList(80, u"name"_s)));
    picker.click(0);
    picker.grid.setCurrentIndex(79);
    QVERIFY(picker.grid.viewport()->rect().contains(place(79)));
    QVERIFY(!picker.grid.viewport()->rect().intersects(place(0)));
}

void TestGenrePicker::assistiveProgramsPick()
{
    Picker picker;
    QTRY_VERIFY(picker.window.isActiveWindow());
    picker.grid.setAccessibleName(u"Genres"_s);
    QAccessibleInterface *list = QAccessible::queryAccessibleInterface(&picker.grid);
    QCOMPARE(list->role(), QAccessible::List);
    QCOMPARE(list->childCount(), 6);
    picker.field.setText(u"o"_s);
    QCOMPARE(list->childCount(), 4);
    QVERIFY(list->child(4) == nullptr && list->child(-1) == nullptr);
    QAccessibleInterface *pop = list->child(3);
    QCOMPARE(list->indexOfChild(pop), 3);
    QCOMPARE(pop->parent(), list);
    QCOMPARE(pop->role(), QAccessible::ListItem);
    QCOMPARE(pop->text(QAccessible::Name), u"Pop"_s);
    QCOMPARE(pop->text(QAccessible::Description), u"Genre, 3 of 5 stars"_s);
    QVERIFY(pop->state().selectable && pop->state().focusable && !pop->state().selected);
    pop->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    QCOMPARE(picker.told, QStringList{u"Pop"_s});
    QVERIFY(pop->state().selected && !pop->state().focused);
    pop->actionInterface()->doAction(QAccessibleActionInterface::setFocusAction());
    QVERIFY(pop->state().focused);
    QCOMPARE(list->focusChild(), pop);
    const QPoint middle = pop->rect().center();
    QCOMPARE(list->childAt(middle.x(), middle.y()), pop);
}

QTEST_MAIN(TestGenrePicker)
#include "tst_genrepicker.moc"
