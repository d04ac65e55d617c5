#include "stage.h"

#include "testlibs/orientedjpeg.h"

#include <QFile>
#include <QSignalSpy>
#include <QTest>

#include <cmath>

using namespace Qt::StringLiterals;
using namespace ui::fakes;

namespace {

/// Opens the preview of the first tile and waits until it has faded in.
QQuickItem *openPreview(QQuickWindow *window)
{
    click(tiles(window).first());
    return QTest::qWaitFor([&] { return overlay(window) && overlay(window)->opacity() == 1; })
        ? overlay(window)
        : nullptr;
}

} // namespace

/// The preview over the whole window.
class PreviewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void clickOpensThePreview();
    void previewClosesAllWays_data();
    void previewClosesAllWays();
    void setAsWallpaperSetsAndCloses();
    void previewShowsThePictureWhole_data();
    void previewShowsThePictureWhole();
    void turnedPictureIsShownUpright_data() { testlibs::addOrientations(); }
    void turnedPictureIsShownUpright();
    void unreadableFileHasNoPreview();
    void previewOfADeletedFileVanishes();
    void resizingKeepsThePreview();
    void reopenedWindowHasNoPreview();
    void tabStaysInThePreview();
};

void PreviewTest::clickOpensThePreview()
{
    Stage stage;
    const QUrl url = stage.putPicture(u"wallpaper.png"_s);
    QQuickWindow *window = stage.openMain();
    QVERIFY(!overlay(window));
    click(tiles(window).first());
    QCOMPARE(itemOfType(window->contentItem(), "ContentView")->property("previewURL").toUrl(), url);
    QTRY_VERIFY(overlay(window));
    QVERIFY(overlay(window)->opacity() < 1); // It fades in.
    QTRY_COMPARE(overlay(window)->opacity(), 1.0);
    QCOMPARE(place(overlay(window)), QRectF(0, 0, 960, 640));
    const QRectF apply = place(control(window, u"Set as Wallpaper"_s));
    const QRectF close = place(control(window, u"Close"_s));
    QCOMPARE(close.left() - apply.right(), 12.0);
    QCOMPARE(640 - apply.bottom(), 24.0);
    QVERIFY(std::abs((apply.left() + close.right()) / 2 - 480) <= 1);
    QCOMPARE(place(control(window, u"Close preview"_s)).topRight(), QPointF(960, 0));
    QCOMPARE(control(window, u"Close preview"_s)->property("padding").toReal(), 16.0);
}

void PreviewTest::previewClosesAllWays_data()
{
    QTest::addColumn<int>("way");
    QTest::newRow("the dark ground") << 0;
    QTest::newRow("the icon") << 1;
    QTest::newRow("Close") << 2;
    QTest::newRow("Escape") << 3;
    QTest::newRow("the picture") << 4;
}

void PreviewTest::previewClosesAllWays()
{
    QFETCH(int, way);
    Stage stage;
    stage.putPicture(u"wallpaper.png"_s);
    QQuickWindow *window = stage.openMain();
    QQuickItem *preview = openPreview(window);
    QVERIFY(preview);
    switch (way) {
    case 0:
        click(preview, {100, 5});
        break;
    case 1:
        click(control(window, u"Close preview"_s));
        break;
    case 2:
        click(control(window, u"Close"_s));
        break;
    case 3:
        press(window, Qt::Key_Escape);
        break;
    default:
        click(picture(preview));
    }
    QCOMPARE(
        itemOfType(window->contentItem(), "ContentView")->property("previewURL").toUrl(), QUrl());
    QTRY_VERIFY(!overlay(window));
    QVERIFY(stage.desktop.pictures.isEmpty());
    QCOMPARE(stage.manager().status(), QString());
}

void PreviewTest::setAsWallpaperSetsAndCloses()
{
    Stage stage;
    const QUrl url = stage.putPicture(u"wall #1.png"_s);
    QQuickWindow *window = stage.openMain();
    QVERIFY(openPreview(window));
    click(control(window, u"Set as Wallpaper"_s));
    QTRY_COMPARE(stage.manager().status(), u"Wallpaper set!"_s);
    QCOMPARE(stage.desktop.pictures.first().first, url.toLocalFile());
    QTRY_VERIFY(!overlay(window));
}

void PreviewTest::previewShowsThePictureWhole_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("wide") << QSize(4000, 400);
    QTest::newRow("tall") << QSize(400, 4000);
    QTest::newRow("as a screen") << QSize(1920, 1080);
}

void PreviewTest::previewShowsThePictureWhole()
{
    QFETCH(QSize, size);
    Stage stage;
    stage.putPicture(u"wallpaper.png"_s, size, Qt::green);
    QQuickWindow *window = stage.openMain();
    QVERIFY(openPreview(window));
    const QRectF room(32, 32, 960 - 64, 640 - 64);
    QCOMPARE(place(picture(overlay(window))), room);
    QRectF whole(QPointF(), size.toSizeF().scaled(room.size(), Qt::KeepAspectRatio));
    whole.moveCenter(room.center());
    const QRectF inside = whole.adjusted(2, 2, -2, -2);
    const QRectF outside = whole.adjusted(-2, -2, 2, 2);
    QCOMPARE(colorAt(window, inside.topLeft()), QColor(Qt::green));
    QCOMPARE(colorAt(window, QPointF(inside.right(), inside.top())), QColor(Qt::green));
    QVERIFY(colorAt(window, outside.topLeft()) != QColor(Qt::green));
}

void PreviewTest::turnedPictureIsShownUpright()
{
    QFETCH(int, orientation);
    Stage stage;
    const QUrl url = stage.putImage(u"wallpaper.jpg"_s);
    testlibs::putOrientedJpeg(url.toLocalFile(), orientation, {640, 360});
    QQuickWindow *window = stage.openMain();
    QVERIFY(openPreview(window));
    const QRect room = place(picture(overlay(window))).toRect();
    QTRY_COMPARE(testlibs::quarters(window->grabWindow().copy(room)), testlibs::uprightQuarters);
}

void PreviewTest::unreadableFileHasNoPreview()
{
    Stage stage;
    const QUrl broken = stage.putImage(u"broken.png"_s);
    QQuickWindow *window = stage.openMain();
    click(tiles(window).first());
    QQuickItem *content = itemOfType(window->contentItem(), "ContentView");
    QCOMPARE(content->property("previewURL").toUrl(), broken);
    auto *shown = content->findChild<ui::Picture *>();
    QVERIFY(shown);
    QTRY_COMPARE(shown->status(), ui::Picture::Unreadable);
    QVERIFY(!overlay(window));
    stage.putPicture(u"good.png"_s);
    stage.manager().reloadHistory();
    QTRY_VERIFY(tile(window, u"good.png"_s));
    click(tile(window, u"good.png"_s));
    QTRY_VERIFY(overlay(window));
}

void PreviewTest::previewOfADeletedFileVanishes()
{
    Stage stage;
    const QUrl url = stage.putPicture(u"wallpaper.png"_s);
    QQuickWindow *window = stage.openMain();
    QVERIFY(openPreview(window));
    QVERIFY(QFile::remove(url.toLocalFile()));
    stage.manager().reloadHistory();
    QTRY_VERIFY(!overlay(window));
    QCOMPARE(itemOfType(window->contentItem(), "ContentView")->property("previewURL").toUrl(), url);
}

void PreviewTest::resizingKeepsThePreview()
{
    Stage stage;
    stage.putPicture(u"wallpaper.png"_s, {3840, 2160});
    QQuickWindow *window = stage.openMain();
    QQuickItem *preview = openPreview(window);
    QSignalSpy shownSpy(preview, SIGNAL(shownChanged()));
    const int before = picture(preview)->decodedSize().width();
    window->resize(1500, 1000);
    QTRY_VERIFY(picture(preview)->decodedSize().width() > before);
    QCOMPARE(shownSpy.count(), 0);
}

void PreviewTest::reopenedWindowHasNoPreview()
{
    Stage stage;
    stage.putPicture(u"wallpaper.png"_s);
    QQuickWindow *window = stage.openMain();
    QVERIFY(openPreview(window));
    window->close();
    QTRY_VERIFY(!stage.mainWindow());
    window = stage.openMain();
    QVERIFY(!overlay(window));
    QCOMPARE(
        itemOfType(window->contentItem(), "ContentView")->property("previewURL").toUrl(), QUrl());
}

void PreviewTest::tabStaysInThePreview()
{
    Stage stage;
    stage.fillGallery(1);
    QQuickWindow *window = stage.openMain();
    QVERIFY(openPreview(window));
    const QStringList expected{
        u"Set as Wallpaper"_s, u"Close"_s, u"Close preview"_s, u"Set as Wallpaper"_s};
    QStringList walked{focused(window)->property("title").toString()};
    for (int step = 0; step < 3; ++step) {
        press(window, Qt::Key_Tab);
        walked << focused(window)->property("title").toString();
    }
    QCOMPARE(walked, expected);
}

QTEST_MAIN(PreviewTest)
#include "previewtest.moc"
