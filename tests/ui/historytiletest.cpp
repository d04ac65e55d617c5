#include "stage.h"

#include "storage/imagestore.h"
#include "testlibs/orientedjpeg.h"
#include "ui/gallerymodel.h"

#include <QDir>
#include <QFile>
#include <QLocale>
#include <QRegularExpression>
#include <QTest>

#include <sys/stat.h>

using namespace Qt::StringLiterals;
using namespace ui::fakes;

/// One tile of the gallery: its picture, its caption and its buttons.
class HistoryTileTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates)); }

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
    void turnedPictureIsShownUpright_data() { testlibs::addOrientations(); }
    void turnedPictureIsShownUpright();
    void pictureOfTwoColorsKeepsThem();
    void cornersAreRound();
};

void HistoryTileTest::captionIsTheTimeOfTheFile()
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

void HistoryTileTest::fileWithoutDateHasAnEmptyCaption()
{
    QCOMPARE(
        ui::GalleryModel::timestamp(QUrl::fromLocalFile(u"/nowhere/wallpaper.png"_s)), QString());
}

void HistoryTileTest::hoverShowsTheBarAndLeavingHidesIt()
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

void HistoryTileTest::barFadesIn()
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

void HistoryTileTest::applySetsThePictureAndOpensNoPreview()
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

void HistoryTileTest::trashDeletesAtOnceAndOpensNoPreview()
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

void HistoryTileTest::strangeNamesAreShownAppliedAndDeleted_data()
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

void HistoryTileTest::strangeNamesAreShownAppliedAndDeleted()
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

void HistoryTileTest::unreadableFileShowsThePlaceholder_data()
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

void HistoryTileTest::unreadableFileShowsThePlaceholder()
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

void HistoryTileTest::pipeNamedLikeAPictureBlocksNothing()
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

void HistoryTileTest::vanishedFileTurnsIntoThePlaceholder()
{
    Stage stage;
    const QUrl url = stage.putPicture(u"wallpaper.png"_s);
    QQuickWindow *window = stage.openMain();
    QTRY_VERIFY(isReady(tiles(window).first()));
    QVERIFY(QFile::remove(url.toLocalFile()));
    stage.manager().setStatus(u"Something was drawn anew"_s, false);
    QTRY_COMPARE(picture(tiles(window).first())->status(), ui::Picture::Unreadable);
}

void HistoryTileTest::overwrittenFileShowsItsNewPicture()
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

void HistoryTileTest::wideAndTallPicturesFillTheTile_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("wide") << QSize(4000, 100);
    QTest::newRow("tall") << QSize(100, 4000);
    QTest::newRow("tiny") << QSize(1, 1);
    QTest::newRow("large") << QSize(3840, 2160);
}

void HistoryTileTest::wideAndTallPicturesFillTheTile()
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

void HistoryTileTest::turnedPictureIsShownUpright()
{
    QFETCH(int, orientation);
    Stage stage;
    const QUrl url = stage.putImage(u"wallpaper.jpg"_s);
    testlibs::putOrientedJpeg(url.toLocalFile(), orientation, {640, 360});
    QQuickWindow *window = stage.openMain();
    QTRY_VERIFY(isReady(tiles(window).first()));
    const QRect shown = place(picture(tiles(window).first())).toRect();
    QTRY_COMPARE(testlibs::quarters(window->grabWindow().copy(shown)), testlibs::uprightQuarters);
}

void HistoryTileTest::pictureOfTwoColorsKeepsThem()
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

void HistoryTileTest::cornersAreRound()
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

QTEST_MAIN(HistoryTileTest)
#include "historytiletest.moc"
