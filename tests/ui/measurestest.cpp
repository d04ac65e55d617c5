#include "stage.h"

#include <QAccessible>
#include <QTest>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace ui::fakes;

namespace {

QRectF around(QQuickWindow *window)
{
    return {QPointF(), QSizeF(window->size())};
}

QQuickItem *symbolButton(QQuickItem *root)
{
    return itemOfType(root, "SymbolButton");
}

QString spoken(QObject *item)
{
    QAccessibleInterface *answer = QAccessible::queryAccessibleInterface(item);
    return answer ? answer->text(QAccessible::Name) : QString();
}

} // namespace

/// How large things are and where they lie, beyond what the tests of the single views ask.
class MeasuresTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void columnsShareTheWindow_data();
    void columnsShareTheWindow();
    void leastSizeHoldsAllThatCanBeShown();
    void editorGrowsAndShrinksWhileTyping();
    void editorPadsItsText();
    void fullEditorScrollsToTheCursor();
    void tilesFillTheColumn_data();
    void tilesFillTheColumn();
    void lastRowEndsAsFarFromTheFootAsTheFirstFromTheTop();
    void barLiesOnTheFootOfThePicture();
    void previewKeepsItsDistances_data();
    void previewKeepsItsDistances();
    void longStatusIsSpokenWhole();
};

void MeasuresTest::columnsShareTheWindow_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("760") << QSize(760, 480);
    QTest::newRow("960") << QSize(960, 640);
    QTest::newRow("1600") << QSize(1600, 900);
}

void MeasuresTest::columnsShareTheWindow()
{
    QFETCH(QSize, size);
    Stage stage;
    stage.fillGallery(3);
    stage.manager().setAutoEnabled(true);
    stage.manager().setStatus(u"Wallpaper set!"_s, false);
    QQuickWindow *window = stage.openMain();
    window->resize(size);
    QTRY_COMPARE(window->contentItem()->size().toSize(), size);
    QQuickItem *root = window->contentItem();
    const QRectF sidebar = place(itemOfType(root, "Sidebar"));
    const QRectF gallery = place(itemOfType(root, "GalleryView"));
    const QRectF status = place(itemOfType(root, "StatusBar"));
    QCOMPARE(sidebar, QRectF(0, 0, 280, size.height()));
    QCOMPARE(gallery.topLeft(), QPointF(281, 0));
    QCOMPARE(status.topLeft(), gallery.bottomLeft());
    QCOMPARE(status.bottomRight(), around(window).bottomRight());
    QCOMPARE(gallery.right(), status.right());
}

void MeasuresTest::leastSizeHoldsAllThatCanBeShown()
{
    Stage stage;
    stage.fillGallery(1);
    stage.manager().setNsfwEnabled(true);
    stage.manager().setFourKEnabled(true);
    stage.manager().setAutoEnabled(true);
    QQuickWindow *window = stage.openMain();
    window->resize(window->minimumSize());
    QTRY_COMPARE(window->contentItem()->width(), 760.0);
    const auto labels = itemsOfType(window->contentItem(), "PlainLabel");
    for (QQuickItem *one : labels) {
        const QString text = one->property("text").toString();
        QVERIFY2(!one->property("truncated").toBool(), qPrintable(text));
        QVERIFY2(place(one).left() >= 20 && place(one).right() <= 760 - 20, qPrintable(text));
    }
}

void MeasuresTest::editorGrowsAndShrinksWhileTyping()
{
    Stage stage;
    QQuickWindow *window = stage.openMain();
    QQuickItem *editor = control(window, u"Prompt"_s);
    QQuickItem *options = itemOfType(window->contentItem(), "OptionsGroup");
    QCOMPARE(place(editor).height(), 80.0);
    qreal before = 80;
    for (int line = 0; line < 12; ++line) {
        press(window, Qt::Key_Return);
        const qreal now = place(editor).height();
        QVERIFY(now >= before && now <= 120);
        QCOMPARE(place(options).top() - place(editor).bottom(), 20.0);
        before = now;
    }
    QCOMPARE(before, 120.0);
    press(window, Qt::Key_A, Qt::ControlModifier);
    press(window, Qt::Key_Delete);
    QCOMPARE(place(editor).height(), 80.0);
}

void MeasuresTest::editorPadsItsText()
{
    Stage stage;
    QQuickWindow *window = stage.openMain();
    QQuickItem *editor = control(window, u"Prompt"_s);
    QQuickItem *area = itemOfType(editor, "QQuickTextArea");
    const QRectF cursor = area->mapRectToItem(editor, area->property("cursorRectangle").toRectF());
    QCOMPARE(cursor.topLeft(), QPointF(8, 8));
    QCOMPARE(itemOfType(editor, "QQuickRectangle")->property("radius").toReal(), 8.0);
}

void MeasuresTest::fullEditorScrollsToTheCursor()
{
    Stage stage;
    stage.manager().setPrompt(u"line\n"_s.repeated(30));
    QQuickWindow *window = stage.openMain();
    QQuickItem *editor = control(window, u"Prompt"_s);
    QQuickItem *area = itemOfType(editor, "QQuickTextArea");
    const auto cursor
        = [&] { return area->mapRectToItem(editor, area->property("cursorRectangle").toRectF()); };
    type(window, u"x"_s);
    QTRY_VERIFY(cursor().bottom() <= 120 && cursor().top() >= 0);
    press(window, Qt::Key_Home, Qt::ControlModifier);
    QTRY_COMPARE(cursor().top(), 8.0);
}

void MeasuresTest::tilesFillTheColumn_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("columns");
    QTest::newRow("760") << 760 << 1;
    QTest::newRow("1000") << 1000 << 2;
    QTest::newRow("1600") << 1600 << 5;
}

void MeasuresTest::tilesFillTheColumn()
{
    QFETCH(int, width);
    QFETCH(int, columns);
    Stage stage;
    stage.fillGallery(6);
    QQuickWindow *window = stage.openMain();
    window->resize(width, 640);
    QTRY_COMPARE(window->contentItem()->width(), width);
    QTRY_VERIFY(tiles(window).size() > columns);
    const auto all = tiles(window);
    for (int number = 0; number < columns; ++number) {
        const QRectF one = place(all[number]);
        QCOMPARE(one.top(), 24.0);
        QCOMPARE(one.left(), 281 + 24 + number * (one.width() + 20));
        QVERIFY(one.width() >= 220);
        QCOMPARE(place(itemOfType(all[number], "ui::Picture")).height(), 130.0);
    }
    const QRectF below = place(all[columns]);
    QCOMPARE(below.left(), 281.0 + 24);
    QCOMPARE(below.top() - place(all[0]).bottom(), 20.0);
    // No more than what a whole number of points per tile leaves over.
    const qreal unused = width - 24 - place(all[columns - 1]).right();
    QVERIFY(unused >= 0 && unused < columns);
}

void MeasuresTest::lastRowEndsAsFarFromTheFootAsTheFirstFromTheTop()
{
    Stage stage;
    stage.fillGallery(12);
    QQuickWindow *window = stage.openMain();
    QQuickItem *grid = itemOfType(window->contentItem(), "QQuickGridView");
    grid->setProperty("contentY", 100000);
    QMetaObject::invokeMethod(grid, "returnToBounds");
    QTRY_COMPARE(tiles(window).last()->property("index").toInt(), 11);
    QCOMPARE(place(grid).bottom() - place(tiles(window).last()).bottom(), 24.0);
}

void MeasuresTest::barLiesOnTheFootOfThePicture()
{
    Stage stage;
    stage.fillGallery(1);
    QQuickWindow *window = stage.openMain();
    QQuickItem *tile = tiles(window).first();
    hover(tile);
    QTRY_VERIFY(control(tile, u"Apply"_s));
    QQuickItem *apply = control(tile, u"Apply"_s);
    QQuickItem *trash = itemsOfType(tile, "PushButton").last();
    const QRectF picture = place(itemOfType(tile, "ui::Picture"));
    const QRectF bar = place(apply->parentItem()->parentItem());
    QCOMPARE(bar.width(), picture.width());
    QCOMPARE(bar.bottom(), picture.bottom());
    QCOMPARE(place(trash).left() - place(apply).right(), 8.0);
    const qreal top = std::min(place(apply).top(), place(trash).top());
    const qreal bottom = std::max(place(apply).bottom(), place(trash).bottom());
    QCOMPARE(top - bar.top(), 8.0);
    QCOMPARE(bar.bottom() - bottom, 8.0);
    const qreal middle = (place(apply).left() + place(trash).right()) / 2;
    QVERIFY(std::abs(middle - bar.center().x()) <= 1);
}

void MeasuresTest::previewKeepsItsDistances_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("smallest") << QSize(760, 480);
    QTest::newRow("large") << QSize(1600, 900);
}

void MeasuresTest::previewKeepsItsDistances()
{
    QFETCH(QSize, size);
    Stage stage;
    stage.fillGallery(1);
    QQuickWindow *window = stage.openMain();
    window->resize(size);
    QTRY_COMPARE(window->contentItem()->width(), size.width());
    click(tiles(window).first());
    QTRY_VERIFY(control(window, u"Set as Wallpaper"_s));
    QQuickItem *overlay = itemOfType(window->contentItem(), "PreviewOverlay");
    QCOMPARE(place(overlay), around(window));
    QCOMPARE(
        place(itemOfType(overlay, "ui::Picture")), around(window).marginsRemoved({32, 32, 32, 32}));
    const QRectF symbol = place(itemOfType(symbolButton(overlay), "ui::Symbol"));
    QCOMPARE(symbol.top(), 16.0);
    QCOMPARE(size.width() - symbol.right(), 16.0);
    const QRectF apply = place(control(overlay, u"Set as Wallpaper"_s));
    const QRectF close = place(control(overlay, u"Close"_s));
    QCOMPARE(close.left() - apply.right(), 12.0);
    QCOMPARE(size.height() - apply.bottom(), 24.0);
    QCOMPARE(close.bottom(), apply.bottom());
    QVERIFY(std::abs((apply.left() + close.right()) / 2 - size.width() / 2.0) <= 1);
}

void MeasuresTest::longStatusIsSpokenWhole()
{
    Stage stage;
    const QString status = u"Failed: a very long\nreason "_s.repeated(20);
    stage.manager().setStatus(status, true);
    QQuickWindow *window = stage.openMain();
    QQuickItem *text = itemOfType(itemOfType(window->contentItem(), "StatusBar"), "PlainLabel");
    QVERIFY(text->property("truncated").toBool());
    QCOMPARE(text->property("elide").toInt(), int(Qt::ElideRight));
    QCOMPARE(spoken(text), status);
}

QTEST_MAIN(MeasuresTest)
#include "measurestest.moc"
