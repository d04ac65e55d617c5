#include "stage.h"

#include "storage/imagestore.h"
#include "ui/gallerymodel.h"

#include <QDir>
#include <QFile>
#include <QLocale>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>

#include <sys/stat.h>

using namespace Qt::StringLiterals;
using namespace ui::fakes;

namespace {

QQuickItem *grid(QQuickWindow *window)
{
    return itemOfType(window->contentItem(), "QQuickGridView");
}

QQuickItem *trash(QQuickItem *tile)
{
    const auto buttons = itemsOfType(tile, "PushButton");
    return buttons.size() == 2 ? buttons.last() : nullptr;
}

} // namespace

/// The gallery and its tiles.
class GalleryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates)); }

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

    // Tiles.
    void captionIsTheTimeOfTheFile();
    void fileWithoutDateHasAnEmptyCaption();
    void hoverShowsTheBarAndLeavingHidesIt();
    void barFadesIn();
    void applySetsThePictureAndOpensNoPreview();
    void trashDeletesAtOnceAndOpensNoPreview();
    void strangeNamesAreShownAppliedAndDeleted_data();
    void strangeNamesAreShownAppliedAndDeleted();
    void unreadableFileShowsThePlaceholder_data();
    void unreadableFileShowsThePlaceholder();
    void pipeNamedLikeAPictureBlocksNothing();
    void vanishedFileTurnsIntoThePlaceholder();
    void overwrittenFileShowsItsNewPicture();
    void wideAndTallPicturesFillTheTile_data();
    void wideAndTallPicturesFillTheTile();
    void pictureOfTwoColorsKeepsThem();
    void cornersAreRound();

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

void GalleryTest::captionIsTheTimeOfTheFile()
{
    Stage stage;
    const QUrl url = stage.putPicture(u"wallpaper_2001-01-01_00-00-00.png"_s);
    const QDateTime made = storage::ImageStore::creationDate(url);
    QQuickWindow *window = stage.openMain();
    const QString caption = QLocale().toString(made, u"MMM d, HH:mm");
    QVERIFY2(
        QRegularExpression(u"^[A-Z][a-z]{2} \\d{1,2}, \\d\\d:\\d\\d$"_s).match(caption).hasMatch(),
        qPrintable(caption));
    QVERIFY(label(tiles(window).first(), caption));
    QCOMPARE(QLocale().toString(QDateTime(QDate(2026, 3, 7), QTime(9, 5)), u"MMM d, HH:mm"),
        u"Mar 7, 09:05"_s);
}

void GalleryTest::fileWithoutDateHasAnEmptyCaption()
{
    QCOMPARE(
        ui::GalleryModel::timestamp(QUrl::fromLocalFile(u"/nowhere/wallpaper.png"_s)), QString());
}

void GalleryTest::hoverShowsTheBarAndLeavingHidesIt()
{
    Stage stage;
    stage.fillGallery(2);
    QQuickWindow *window = stage.openMain();
    QQuickItem *first = tiles(window).first();
    QVERIFY(!control(first, u"Apply"_s));
    hover(label(first, first->property("timestamp").toString()));
    QTRY_VERIFY(control(first, u"Apply"_s) && trash(first));
    QQuickItem *shown = picture(first);
    QQuickItem *bar = control(first, u"Apply"_s)->parentItem()->parentItem();
    QTRY_COMPARE(bar->opacity(), 1.0);
    QCOMPARE(place(bar).width(), place(shown).width());
    QCOMPARE(place(bar).bottom(), place(shown).bottom());
    const QRectF apply = place(control(first, u"Apply"_s));
    QCOMPARE(place(trash(first)).left() - apply.right(), 8.0);
    QCOMPARE(apply.top() - place(bar).top(), 8.0);
    QVERIFY(!control(tiles(window).at(1), u"Apply"_s));
    QTest::mouseMove(window, {100, 300});
    QTRY_VERIFY(!control(first, u"Apply"_s));
}

void GalleryTest::barFadesIn()
{
    Stage stage;
    stage.fillGallery(1);
    QQuickWindow *window = stage.openMain();
    hover(tiles(window).first());
    QTRY_VERIFY(control(window, u"Apply"_s));
    QQuickItem *bar = control(window, u"Apply"_s)->parentItem()->parentItem();
    QVERIFY(bar->opacity() < 1);
    QTRY_COMPARE(bar->opacity(), 1.0);
}

void GalleryTest::applySetsThePictureAndOpensNoPreview()
{
    Stage stage;
    const QUrl url = stage.putPicture(u"wallpaper.png"_s);
    QQuickWindow *window = stage.openMain();
    hover(tiles(window).first());
    QTRY_VERIFY(control(window, u"Apply"_s));
    click(control(window, u"Apply"_s));
    QTRY_COMPARE(stage.manager().status(), u"Wallpaper set!"_s);
    QCOMPARE(stage.desktop.pictures.size(), 1);
    QCOMPARE(stage.desktop.pictures.first().first, url.toLocalFile());
    QVERIFY(!overlay(window));
    QCOMPARE(
        itemOfType(window->contentItem(), "ContentView")->property("previewURL").toUrl(), QUrl());
}

void GalleryTest::trashDeletesAtOnceAndOpensNoPreview()
{
    Stage stage;
    const QUrl url = stage.putPicture(u"wallpaper.png"_s);
    QQuickWindow *window = stage.openMain();
    hover(tiles(window).first());
    QTRY_VERIFY(trash(tiles(window).first()));
    click(trash(tiles(window).first()));
    QVERIFY(!QFile::exists(url.toLocalFile()));
    QTRY_VERIFY(label(window, u"No wallpapers yet"_s));
    QVERIFY(!overlay(window));
}

void GalleryTest::strangeNamesAreShownAppliedAndDeleted_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("number sign") << u"a#b#.png"_s;
    QTest::newRow("percent signs") << u"100%25 %41.png"_s;
    QTest::newRow("blanks and quotes") << u" 'one' \"two\" .png"_s;
    QTest::newRow("line break") << u"one\ntwo.png"_s;
    QTest::newRow("umlauts and emoji") << u"Grüße 🌄.png"_s;
    QTest::newRow("question mark and ampersand") << u"what?a=1&b=2.png"_s;
    QTest::newRow("mark-up") << u"<b>bold</b>.png"_s.replace(u'/', u'_');
    QTest::newRow("backslash and colon") << u"c:\\x.png"_s;
}

void GalleryTest::strangeNamesAreShownAppliedAndDeleted()
{
    QFETCH(QString, name);
    Stage stage;
    const QUrl url = stage.putPicture(name);
    QQuickWindow *window = stage.openMain();
    QTRY_VERIFY(tile(window, name));
    QTRY_VERIFY(isReady(tile(window, name)));
    hover(tile(window, name));
    QTRY_VERIFY(control(window, u"Apply"_s));
    click(control(window, u"Apply"_s));
    QTRY_COMPARE(stage.desktop.pictures.size(), 1);
    QCOMPARE(stage.desktop.pictures.first().first, stage.imageFolder() + u'/' + name);
    click(trash(tile(window, name)));
    QVERIFY(!QFile::exists(url.toLocalFile()));
    QTRY_VERIFY(tiles(window).isEmpty());
}

void GalleryTest::unreadableFileShowsThePlaceholder_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("text") << "no picture"_ba;
    QTest::newRow("a PNG's first bytes") << "\x89PNG\r\n\x1a\n"_ba;
    QTest::newRow("a JPEG's first bytes") << "\xff\xd8\xff\xe0"_ba;
    QTest::newRow("SVG, which can reach other files")
        << "<svg xmlns='http://www.w3.org/2000/svg' width='9' height='9'/>"_ba;
    QTest::newRow("GIF") << QByteArray::fromHex(
        "47494638396101000100800000ffffff00000021f90401000000002c00000000010001000002024401003b");
    // 20000 x 20000 pixels of 32 bits, as a header says.
    QTest::newRow("far too large") << QByteArray::fromHex(
        "89504e470d0a1a0a0000000d4948445200004e2000004e200806000000c24a6f7e");
}

void GalleryTest::unreadableFileShowsThePlaceholder()
{
    QFETCH(QByteArray, bytes);
    Stage stage;
    const QUrl url = stage.putImage(u"broken.png"_s);
    QFile file(url.toLocalFile());
    QVERIFY(file.open(QFile::WriteOnly) && file.write(bytes) == bytes.size());
    file.close();
    QQuickWindow *window = stage.openMain();
    QTRY_VERIFY(picture(tiles(window).first())->status() == ui::Picture::Unreadable);
    QQuickItem *placeholder = itemOfType(tiles(window).first(), "QQuickRectangle");
    QCOMPARE(placeholder->height(), 130.0);
    QCOMPARE(placeholder->property("radius").toReal(), 10.0);
    hover(tiles(window).first());
    QTRY_VERIFY(control(window, u"Apply"_s) && trash(tiles(window).first()));
    click(trash(tiles(window).first()));
    QTRY_VERIFY(tiles(window).isEmpty());
}

void GalleryTest::pipeNamedLikeAPictureBlocksNothing()
{
    Stage stage;
    QDir().mkpath(stage.imageFolder() + u"/folder.png"_s);
    const QString pipe = stage.imageFolder() + u"/pipe.png"_s;
    QCOMPARE(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    stage.putPicture(u"good.png"_s);
    QQuickWindow *window = stage.openMain();
    QTRY_VERIFY(isReady(tile(window, u"good.png"_s)));
    const auto all = tiles(window);
    for (QQuickItem *one : all) {
        QTRY_VERIFY(picture(one)->status() != ui::Picture::Loading);
    }
}

void GalleryTest::vanishedFileTurnsIntoThePlaceholder()
{
    Stage stage;
    const QUrl url = stage.putPicture(u"wallpaper.png"_s);
    QQuickWindow *window = stage.openMain();
    QTRY_VERIFY(isReady(tiles(window).first()));
    QVERIFY(QFile::remove(url.toLocalFile()));
    stage.manager().setStatus(u"Something was drawn anew"_s, false);
    QTRY_COMPARE(picture(tiles(window).first())->status(), ui::Picture::Unreadable);
}

void GalleryTest::overwrittenFileShowsItsNewPicture()
{
    Stage stage;
    stage.putPicture(u"wallpaper.png"_s, {640, 360}, Qt::blue);
    QQuickWindow *window = stage.openMain();
    const QPointF middle = place(picture(tiles(window).first())).center();
    QTRY_COMPARE(colorAt(window, middle), QColor(Qt::blue));
    stage.putPicture(u"wallpaper.png"_s, {800, 450}, Qt::red);
    stage.manager().setStatus(u"Wallpaper set!"_s, false);
    QTRY_COMPARE(colorAt(window, middle), QColor(Qt::red));
}

void GalleryTest::wideAndTallPicturesFillTheTile_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("wide") << QSize(4000, 100);
    QTest::newRow("tall") << QSize(100, 4000);
    QTest::newRow("tiny") << QSize(1, 1);
    QTest::newRow("large") << QSize(3840, 2160);
}

void GalleryTest::wideAndTallPicturesFillTheTile()
{
    QFETCH(QSize, size);
    Stage stage;
    stage.putPicture(u"wallpaper.png"_s, size, Qt::green);
    QQuickWindow *window = stage.openMain();
    QTRY_VERIFY(isReady(tiles(window).first()));
    const QRectF shown = place(picture(tiles(window).first())).adjusted(12, 1, -12, -1);
    QTRY_COMPARE(colorAt(window, shown.center()), QColor(Qt::green));
    for (const QPointF &point : {shown.topLeft(), shown.bottomRight() - QPointF(1, 1)}) {
        QCOMPARE(colorAt(window, point), QColor(Qt::green));
    }
    // At most what two tiles take, however large the file is.
    QVERIFY(picture(tiles(window).first())->decodedSize().width() <= 2 * 384);
}

void GalleryTest::pictureOfTwoColorsKeepsThem()
{
    Stage stage;
    QImage image(800, 600, QImage::Format_Mono);
    image.setColorTable({qRgb(255, 0, 0), qRgb(0, 0, 255)});
    image.fill(0);
    QVERIFY(image.save(stage.putImage(u"wallpaper.png"_s).toLocalFile()));
    QQuickWindow *window = stage.openMain();
    QTRY_VERIFY(isReady(tiles(window).first()));
    const QPointF middle = place(picture(tiles(window).first())).center();
    QTRY_COMPARE(colorAt(window, middle), QColor(Qt::red));
}

void GalleryTest::cornersAreRound()
{
    Stage stage;
    stage.putPicture(u"wallpaper.png"_s, {640, 360}, Qt::green);
    QQuickWindow *window = stage.openMain();
    QTRY_VERIFY(isReady(tiles(window).first()));
    const QRectF shown = place(picture(tiles(window).first()));
    QTRY_COMPARE(colorAt(window, shown.center()), QColor(Qt::green));
    QCOMPARE(colorAt(window, shown.topLeft()), window->color());
    QCOMPARE(colorAt(window, shown.bottomRight() - QPointF(1, 1)), window->color());
    QCOMPARE(colorAt(window, shown.topLeft() + QPointF(4, 4)), QColor(Qt::green));
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
