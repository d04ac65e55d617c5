#include "stage.h"

#include <QFile>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace ui::fakes;

namespace {

QQuickItem *grid(QQuickWindow *window)
{
    return itemOfType(window->contentItem(), "QQuickGridView");
}

} // namespace

/// The gallery: which tiles there are, and where.
class GalleryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // The empty state.
    void emptyHistoryShowsTheEmptyState();
    void firstPictureReplacesTheEmptyState();

    // The grid.
    void columnsFollowTheWidth_data();
    void columnsFollowTheWidth();
    void tilesKeepTheirMeasures();
    void onlyRowsInViewHaveTiles();
    void newPictureLeavesTheOthersAlone();
    void newPictureLeavesTheScrollPositionAlone();
    void deletedPictureLeavesTheOthersAlone();

    // The keyboard.
    void arrowsWalkTheTilesAndReturnOpensThePreview();
    void focusedTileShowsItsBar();
};

void GalleryTest::emptyHistoryShowsTheEmptyState()
{
    Stage stage;
    QQuickWindow *window = stage.openMain();
    QVERIFY(!grid(window));
    QQuickItem *title = label(window, u"No wallpapers yet"_s);
    QQuickItem *text
        = label(window, u"Generate your first wallpaper\nusing the sidebar controls."_s);
    QQuickItem *empty = itemOfType(window->contentItem(), "EmptyGallery");
    QVERIFY(title && text);
    QCOMPARE(text->property("lineCount").toInt(), 2);
    const QRectF column = place(itemOfType(window->contentItem(), "GalleryView"));
    QVERIFY((place(empty).center() - column.center()).manhattanLength() <= 1);
    QCOMPARE(place(text).top() - place(title).bottom(), 12.0);
    QQuickItem *symbol = itemOfType(empty, "ui::Symbol");
    QCOMPARE(symbol->height(), 48.0);
    QCOMPARE(place(title).top() - place(symbol).bottom(), 12.0);
}

void GalleryTest::firstPictureReplacesTheEmptyState()
{
    Stage stage;
    QQuickWindow *window = stage.openMain();
    stage.fillGallery(1);
    QTRY_COMPARE(tiles(window).size(), 1);
    QVERIFY(!label(window, u"No wallpapers yet"_s));
}

void GalleryTest::columnsFollowTheWidth_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("columns");
    QTest::newRow("smallest window: 431 points are too few for two") << 760 << 1;
    QTest::newRow("one point less than two columns need") << 788 << 1;
    QTest::newRow("exactly two columns") << 789 << 2;
    QTest::newRow("first window") << 960 << 2;
    QTest::newRow("1000") << 1000 << 2;
    QTest::newRow("exactly three columns") << 1029 << 3;
    QTest::newRow("1600") << 1600 << 5;
}

void GalleryTest::columnsFollowTheWidth()
{
    QFETCH(int, width);
    QFETCH(int, columns);
    Stage stage;
    stage.fillGallery(7);
    QQuickWindow *window = stage.openMain();
    window->resize(width, 640);
    QTRY_COMPARE(window->contentItem()->width(), width);
    const auto inFirstRow = [window] {
        const auto all = tiles(window);
        return std::count_if(all.cbegin(), all.cend(),
            [&all](QQuickItem *one) { return place(one).top() == place(all.first()).top(); });
    };
    QTRY_COMPARE(inFirstRow(), columns);
    QVERIFY(place(tiles(window).first()).width() >= 220);
    const QRectF last = place(tiles(window).at(columns - 1));
    QVERIFY(width - 24 - last.right() >= 0 && width - 24 - last.right() < columns);
}

void GalleryTest::tilesKeepTheirMeasures()
{
    Stage stage;
    stage.fillGallery(6);
    QQuickWindow *window = stage.openMain();
    const auto all = tiles(window);
    const QRectF first = place(all[0]);
    QCOMPARE(first.topLeft(), QPointF(281 + 24, 24));
    QCOMPARE(place(all[1]).left() - first.right(), 20.0);
    QCOMPARE(place(all[2]).top() - first.bottom(), 20.0);
    QCOMPARE(place(all[2]).left(), first.left());
    const QRectF shown = place(picture(all[0]));
    QCOMPARE(shown.size(), QSizeF(first.width(), 130));
    QQuickItem *caption = label(all[0], all[0]->property("timestamp").toString());
    QCOMPARE(place(caption).top() - shown.bottom(), 6.0);
    QVERIFY(place(caption).bottom() <= first.bottom());
}

void GalleryTest::onlyRowsInViewHaveTiles()
{
    Stage stage;
    stage.fillGallery(200);
    QQuickWindow *window = stage.openMain();
    QTRY_VERIFY(isReady(tiles(window).first()));
    const auto atFirst = tiles(window).size();
    QVERIFY(atFirst >= 8 && atFirst <= 12);
    QQuickItem *view = grid(window);
    view->setProperty("contentY", view->property("contentHeight").toReal() / 2);
    QTRY_VERIFY(tiles(window).first()->property("index").toInt() > 80);
    QTRY_VERIFY(isReady(tiles(window).first()));
    QVERIFY(view->findChildren<ui::Picture *>().size() <= 12
        && itemsOfType(view, "HistoryTile").size() <= 12);
}

void GalleryTest::newPictureLeavesTheOthersAlone()
{
    Stage stage;
    stage.fillGallery(3);
    QQuickWindow *window = stage.openMain();
    const QStringList names{
        u"wallpaper_0000.png"_s, u"wallpaper_0001.png"_s, u"wallpaper_0002.png"_s};
    QList<QPointer<QQuickItem>> before;
    for (const QString &name : names) {
        QTRY_VERIFY(isReady(tile(window, name)));
        before << tile(window, name);
    }
    QSignalSpy statusSpy(picture(before.first()), &ui::Picture::statusChanged);
    stage.putPicture(u"wallpaper_9999.png"_s);
    stage.manager().reloadHistory();
    QTRY_COMPARE(tiles(window).size(), 4);
    for (qsizetype index = 0; index < names.size(); ++index) {
        QCOMPARE(tile(window, names[index]), before[index].data());
        QVERIFY(isReady(before[index]));
    }
    QCOMPARE(statusSpy.count(), 0);
}

void GalleryTest::newPictureLeavesTheScrollPositionAlone()
{
    Stage stage;
    stage.fillGallery(60);
    QQuickWindow *window = stage.openMain();
    QQuickItem *view = grid(window);
    view->setProperty("contentY", 1000.0);
    QTRY_VERIFY(tiles(window).first()->property("index").toInt() > 5);
    stage.putPicture(u"wallpaper_9999.png"_s);
    stage.manager().reloadHistory();
    QTRY_COMPARE(view->property("count").toInt(), 61);
    place(view); // Lays it out.
    QCOMPARE(view->property("contentY").toReal() - view->property("originY").toReal(), 1000.0);
    // Every tile sits where its number says, whatever came in above.
    const qreal rowHeight = view->property("cellHeight").toReal();
    const auto all = tiles(window);
    for (QQuickItem *one : all) {
        const int row = one->property("index").toInt() / 2;
        QCOMPARE(one->y() - view->property("originY").toReal(), row * rowHeight);
    }
}

void GalleryTest::deletedPictureLeavesTheOthersAlone()
{
    Stage stage;
    stage.fillGallery(4);
    QQuickWindow *window = stage.openMain();
    const QPointer<QQuickItem> kept = tile(window, u"wallpaper_0000.png"_s);
    QTRY_VERIFY(isReady(kept));
    QSignalSpy statusSpy(picture(kept), &ui::Picture::statusChanged);
    QFile::remove(stage.imageFolder() + u"/wallpaper_0002.png"_s);
    stage.manager().reloadHistory();
    QTRY_COMPARE(tiles(window).size(), 3);
    QCOMPARE(tile(window, u"wallpaper_0000.png"_s), kept.data());
    QCOMPARE(statusSpy.count(), 0);
}

void GalleryTest::arrowsWalkTheTilesAndReturnOpensThePreview()
{
    Stage stage;
    stage.fillGallery(5);
    QQuickWindow *window = stage.openMain();
    control(window, u"Auto-generate"_s)->forceActiveFocus(Qt::TabFocusReason);
    press(window, Qt::Key_Tab);
    QCOMPARE(focused(window), tiles(window).at(0));
    press(window, Qt::Key_Right);
    QCOMPARE(focused(window), tiles(window).at(1));
    press(window, Qt::Key_Down);
    QCOMPARE(focused(window), tiles(window).at(3));
    press(window, Qt::Key_Left);
    QCOMPARE(focused(window), tiles(window).at(2));
    press(window, Qt::Key_Up);
    QCOMPARE(focused(window), tiles(window).at(0));
    press(window, Qt::Key_Return);
    QTRY_VERIFY(overlay(window));
    press(window, Qt::Key_Escape);
    QTRY_VERIFY(!overlay(window));
    QCOMPARE(focused(window), tiles(window).at(0));
}

void GalleryTest::focusedTileShowsItsBar()
{
    Stage stage;
    stage.fillGallery(2);
    QQuickWindow *window = stage.openMain();
    control(window, u"Auto-generate"_s)->forceActiveFocus(Qt::TabFocusReason);
    press(window, Qt::Key_Tab);
    QVERIFY(control(tiles(window).first(), u"Apply"_s));
    press(window, Qt::Key_Tab);
    press(window, Qt::Key_Space);
    QTRY_COMPARE(stage.desktop.pictures.size(), 1);
    press(window, Qt::Key_Tab);
    press(window, Qt::Key_Space);
    QTRY_COMPARE(tiles(window).size(), 1);
    QVERIFY(focused(window)->isVisible());
}

QTEST_MAIN(GalleryTest)
#include "gallerytest.moc"
