#include "stage.h"

#include "storage/keychain.h"

#include <algorithm>

#include <QTest>

using namespace Qt::StringLiterals;
using namespace ui::fakes;
using storage::Keychain;

namespace {
const auto generate = u"Generate & Set Wallpaper"_s;
const auto key = u"canary-key"_s;
} // namespace

/// The main window: its frame, the status bar, and the way of the keyboard through it.
class ContentViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // The frame.
    void opensAsLargeAsDescribed();
    void narrowingStopsAtTheLeastSize();
    void sidebarIsAsWideInEveryWindow_data();
    void sidebarIsAsWideInEveryWindow();
    void sidebarKeepsItsDistances();
    void tallSidebarScrollsAndFollowsTheKeyboard();

    // The status bar.
    void statusBarFollowsTheStatus();
    void statusBarSitsAtTheFootOfTheGallery();
    void longStatusIsOneTruncatedLine();
    void statusWithMarkupAndLineBreaksIsPlain();

    // The keyboard.
    void tabWalksAsOneReads();
    void spaceAndReturnPress();
    void standardShortcutOpensSettings();
};

void ContentViewTest::opensAsLargeAsDescribed()
{
    Stage stage;
    QQuickWindow *window = stage.openMain();
    QVERIFY(window);
    QCOMPARE(window->title(), u"Plenaura"_s);
    QCOMPARE(window->size(), QSize(960, 640));
}

void ContentViewTest::narrowingStopsAtTheLeastSize()
{
    Stage stage;
    QQuickWindow *window = stage.openMain();
    QCOMPARE(window->minimumSize(), QSize(760, 480));
    QVERIFY(window->maximumWidth() > 100'000);
}

void ContentViewTest::sidebarIsAsWideInEveryWindow_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("smallest") << QSize(760, 480);
    QTest::newRow("first") << QSize(960, 640);
    QTest::newRow("large") << QSize(1600, 1000);
}

void ContentViewTest::sidebarIsAsWideInEveryWindow()
{
    QFETCH(QSize, size);
    Stage stage;
    QQuickWindow *window = stage.openMain();
    window->resize(size);
    QTRY_COMPARE(window->contentItem()->width(), size.width());
    QQuickItem *sidebar = itemOfType(window->contentItem(), "Sidebar");
    QCOMPARE(place(sidebar), QRectF(0, 0, 280, size.height()));
    const QRectF gallery = place(itemOfType(window->contentItem(), "GalleryView"));
    QCOMPARE(gallery, QRectF(281, 0, size.width() - 281, size.height()));
}

void ContentViewTest::sidebarKeepsItsDistances()
{
    Stage stage;
    QQuickWindow *window = stage.openMain();
    QQuickItem *root = window->contentItem();
    const QList<QRectF> groups{place(itemOfType(root, "PromptGroup")),
        place(itemOfType(root, "OptionsGroup")), place(itemOfType(root, "GenerateButton")),
        place(itemOfType(root, "ProviderLine")), place(itemOfType(root, "MissingKeys")),
        place(itemsOfType(itemOfType(root, "ScrollColumn"), "Separator").value(0)),
        place(itemOfType(root, "ScheduleGroup"))};
    QCOMPARE(groups.first().topLeft(), QPointF(20, 20));
    for (qsizetype group = 0; group < groups.size(); ++group) {
        QCOMPARE(groups[group].left(), 20.0);
        QCOMPARE(groups[group].width(), 240.0);
        if (group > 0) {
            QCOMPARE(groups[group].top() - groups[group - 1].bottom(), 20.0);
        }
    }
    QCOMPARE(groups[5].height(), 1.0);
    const QRectF header = place(label(window, u"Prompt"_s));
    const QRectF editor = place(control(window, u"Prompt"_s));
    QCOMPARE(editor.top() - header.bottom(), 8.0);
    const QRectF fourK = place(control(window, u"4K resolution"_s));
    QCOMPARE(place(control(window, u"NSFW"_s)).top() - fourK.bottom(), 10.0);
    QCOMPARE(fourK.top() - place(label(window, u"Options"_s)).bottom(), 10.0);
}

void ContentViewTest::tallSidebarScrollsAndFollowsTheKeyboard()
{
    Stage stage;
    stage.manager().setAutoEnabled(true);
    stage.manager().setNsfwEnabled(true);
    stage.manager().setFourKEnabled(true);
    stage.manager().setPrompt(u"line\n"_s.repeated(9));
    QQuickWindow *window = stage.openMain();
    window->resize(760, 480);
    QQuickItem *column = itemOfType(window->contentItem(), "ScrollColumn");
    QTRY_COMPARE(column->height(), 480.0);
    QVERIFY(column->property("contentHeight").toReal() > 480);
    QCOMPARE(column->property("contentY").toReal(), 0.0);
    picker(window)->forceActiveFocus(Qt::TabFocusReason);
    QTRY_VERIFY(place(picker(window)).bottom() <= 480);
    QVERIFY(column->property("contentY").toReal() > 0);
}

void ContentViewTest::statusBarFollowsTheStatus()
{
    Stage stage;
    QQuickWindow *window = stage.openMain();
    QVERIFY(!itemOfType(window->contentItem(), "StatusBar"));
    stage.manager().setStatus(u"Wallpaper set!"_s, false);
    QQuickItem *bar = itemOfType(window->contentItem(), "StatusBar");
    QVERIFY(bar && label(bar, u"Wallpaper set!"_s));
    QQuickItem *symbol = itemOfType(bar, "ui::Symbol");
    QCOMPARE(symbol->property("name").toString(), u"checkmark.circle.fill"_s);
    const auto green = label(bar, u"Wallpaper set!"_s)->property("color").value<QColor>();
    QVERIFY(green.green() > green.red());
    QCOMPARE(symbol->property("color").value<QColor>().rgba(), green.rgba());

    stage.manager().setStatus(u"Failed: no"_s, true);
    QCOMPARE(symbol->property("name").toString(), u"exclamationmark.triangle.fill"_s);
    const auto red = label(bar, u"Failed: no"_s)->property("color").value<QColor>();
    QVERIFY(red.red() > red.green());
    stage.manager().setStatus(QString(), false);
    QVERIFY(!itemOfType(window->contentItem(), "StatusBar"));
}

void ContentViewTest::statusBarSitsAtTheFootOfTheGallery()
{
    Stage stage;
    stage.manager().setStatus(u"Wallpaper set!"_s, false);
    QQuickWindow *window = stage.openMain();
    QQuickItem *bar = itemOfType(window->contentItem(), "StatusBar");
    QCOMPARE(place(bar).left(), 281.0);
    QCOMPARE(place(bar).bottom(), 640.0);
    QCOMPARE(place(bar).width(), 679.0);
    QCOMPARE(place(itemOfType(window->contentItem(), "GalleryView")).bottom(), place(bar).top());
    QQuickItem *text = label(bar, u"Wallpaper set!"_s);
    QQuickItem *symbol = itemOfType(bar, "ui::Symbol");
    QCOMPARE(place(symbol).left() - place(bar).left(), 24.0);
    QCOMPARE(place(text).left() - place(symbol).right(), 6.0);
    QCOMPARE(place(text).top() - place(bar).top(), 8.0);
    QCOMPARE(place(bar).bottom() - place(text).bottom(), 8.0);
}

void ContentViewTest::longStatusIsOneTruncatedLine()
{
    Stage stage;
    const QString status = u"Failed: a very long reason "_s.repeated(20);
    stage.manager().setStatus(status, true);
    QQuickWindow *window = stage.openMain();
    QQuickItem *bar = itemOfType(window->contentItem(), "StatusBar");
    QQuickItem *text = itemOfType(bar, "PlainLabel");
    QCOMPARE(text->property("lineCount").toInt(), 1);
    QVERIFY(text->property("truncated").toBool());
    QVERIFY(place(text).right() <= place(bar).right() - 24);
    hover(text);
    const auto isShownWhole = [&] { // By the tool tip.
        const auto labels = itemsOfType(window->contentItem(), "PlainLabel");
        return std::any_of(labels.begin(), labels.end(), [&](const QQuickItem *item) {
            return item->property("text") == status && !item->property("truncated").toBool();
        });
    };
    QTRY_VERIFY(isShownWhole());
}

void ContentViewTest::statusWithMarkupAndLineBreaksIsPlain()
{
    Stage stage;
    stage.manager().setStatus(u"Error: <b>one</b>\ntwo\u2028three"_s, true);
    QQuickWindow *window = stage.openMain();
    QQuickItem *text = label(window, u"Error: <b>one</b> two three"_s);
    QVERIFY(text);
    QCOMPARE(text->property("lineCount").toInt(), 1);
    QCOMPARE(text->property("textFormat").toInt(), 0);
}

void ContentViewTest::tabWalksAsOneReads()
{
    Stage stage;
    Keychain::save(key, u"gemini"_s);
    stage.fillGallery(2);
    stage.manager().setPrompt(u"a lake"_s);
    stage.manager().setAutoEnabled(true);
    QQuickWindow *window = stage.openMain();
    QVERIFY(focused(window)->inherits("QQuickTextArea"));
    const QList<QQuickItem *> order{control(window, u"4K resolution"_s), control(window, u"NSFW"_s),
        control(window, generate), control(window, u"Auto-generate"_s), picker(window),
        tiles(window).first()};
    for (QQuickItem *next : order) {
        press(window, Qt::Key_Tab);
        QCOMPARE(focused(window), next);
    }
    press(window, Qt::Key_Backtab, Qt::ShiftModifier);
    QCOMPARE(focused(window), picker(window));
    press(window, Qt::Key_Tab);
    press(window, Qt::Key_Tab);
    QCOMPARE(focused(window)->property("title").toString(), u"Apply"_s);
    press(window, Qt::Key_Tab);
    QCOMPARE(focused(window)->property("symbol").toString(), u"trash"_s);
    press(window, Qt::Key_Tab);
    QVERIFY(focused(window)->inherits("QQuickTextArea"));
}

void ContentViewTest::spaceAndReturnPress()
{
    Stage stage;
    QQuickWindow *window = stage.openMain();
    control(window, u"4K resolution"_s)->forceActiveFocus(Qt::TabFocusReason);
    press(window, Qt::Key_Space);
    QVERIFY(stage.manager().fourKEnabled());
    press(window, Qt::Key_Return);
    QVERIFY(!stage.manager().fourKEnabled());
}

void ContentViewTest::standardShortcutOpensSettings()
{
    Stage stage;
    QQuickWindow *window = stage.openMain();
    press(window, Qt::Key_Comma, Qt::ControlModifier);
    QTRY_VERIFY(stage.settingsWindow());
    QVERIFY(stage.mainWindow());
}

QTEST_MAIN(ContentViewTest)
#include "contentviewtest.moc"
