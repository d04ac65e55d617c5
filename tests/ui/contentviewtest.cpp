#include "stage.h"

#include "storage/keychain.h"

#include <algorithm>

#include <QTest>

using namespace Qt::StringLiterals;
using namespace ui::fakes;
using storage::Keychain;
using testlibs::HttpAnswer;

namespace {
const auto generate = u"Generate & Set Wallpaper"_s;
const auto generating = u"Generating..."_s;
const auto key = u"canary-key"_s;

QQuickItem *picker(QQuickWindow *window)
{
    return itemOfType(window->contentItem(), "Picker");
}
} // namespace

/// The main window: its frame, the sidebar, the status bar.
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

    // The prompt.
    void promptIsShownAndEdited();
    void openingLeavesAStrangePromptAlone();
    void editorGrowsWithItsText_data();
    void editorGrowsWithItsText();
    void emptyPromptDisablesTheButtonAndSaysNothing();
    void promptOfSpacesEnablesTheButton();

    // The options.
    void switchesWriteTheManager_data();
    void switchesWriteTheManager();
    void overrideGreysNsfwOutAndKeepsIt();
    void overrideWithoutNsfwNeedsNoNote();
    void disabledSwitchIgnoresClicksAndKeys();

    // The button.
    void buttonStartsARun();
    void buttonShowsARunAndStartsNoSecond();
    void ampersandIsShownAsItIs();
    void altSpaceIsNoMnemonic();

    // Provider, keys, schedule.
    void providerLineNamesTheServices_data();
    void providerLineNamesTheServices();
    void missingKeysAreListedInOrderWithOneHint();
    void noMissingKeyNoBlock();
    void keySavedElsewhereShowsWhenTheWindowBecomesActive();
    void scheduleRowsFollowTheSwitch();
    void pickerOffersAllIntervals();
    void pickerWritesTheChoice();
    void unknownIntervalSelectsNothingAndStays();

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

void ContentViewTest::promptIsShownAndEdited()
{
    Stage stage;
    stage.settings.setValue(u"lastPrompt"_s, u"a lake"_s);
    QQuickWindow *window = stage.openMain();
    QQuickItem *editor = control(window, u"Prompt"_s);
    QCOMPARE(editor->property("text").toString(), u"a lake"_s);
    type(window, u" at dawn"_s);
    QCOMPARE(stage.manager().prompt(), u"a lake at dawn"_s);
    QCOMPARE(stage.settings.value(u"lastPrompt"_s).toString(), u"a lake at dawn"_s);
    stage.manager().setPrompt(u"from elsewhere"_s);
    QCOMPARE(editor->property("text").toString(), u"from elsewhere"_s);
}

void ContentViewTest::openingLeavesAStrangePromptAlone()
{
    Stage stage;
    // A text field turns no-break spaces and line separators into others.
    const auto strange = u"no\u00a0break\u2028separated\r\n<b>bold</b>"_s;
    stage.settings.setValue(u"lastPrompt"_s, strange);
    QQuickWindow *window = stage.openMain();
    QVERIFY(control(window, u"Prompt"_s)->property("text").toString().contains(u"<b>bold</b>"));
    QCOMPARE(stage.manager().prompt(), strange);
    QCOMPARE(stage.settings.value(u"lastPrompt"_s).toString(), strange);
}

void ContentViewTest::editorGrowsWithItsText_data()
{
    QTest::addColumn<int>("lines");
    QTest::addColumn<qreal>("least");
    QTest::addColumn<qreal>("most");
    QTest::newRow("no text: the least height") << 0 << 80.0 << 80.0;
    QTest::newRow("two lines: the least height") << 1 << 80.0 << 80.0;
    QTest::newRow("six lines: in between") << 5 << 81.0 << 119.0;
    QTest::newRow("many lines: the greatest height") << 40 << 120.0 << 120.0;
}

void ContentViewTest::editorGrowsWithItsText()
{
    QFETCH(int, lines);
    QFETCH(qreal, least);
    QFETCH(qreal, most);
    Stage stage;
    stage.manager().setPrompt(u"x\n"_s.repeated(lines));
    const QRectF editor = place(control(stage.openMain(), u"Prompt"_s));
    QVERIFY2(editor.height() >= least && editor.height() <= most,
        qPrintable(QString::number(editor.height())));
    QCOMPARE(editor.width(), 240.0);
}

void ContentViewTest::emptyPromptDisablesTheButtonAndSaysNothing()
{
    Stage stage;
    Keychain::save(key, u"gemini"_s);
    stage.manager().setPrompt(u"x"_s);
    QQuickWindow *window = stage.openMain();
    QVERIFY(control(window, generate)->isEnabled());
    const QStringList before = texts(window);
    press(window, Qt::Key_Backspace);
    QCOMPARE(stage.manager().prompt(), QString());
    QVERIFY(!control(window, generate)->isEnabled());
    QCOMPARE(texts(window), before);
}

void ContentViewTest::promptOfSpacesEnablesTheButton()
{
    Stage stage;
    Keychain::save(key, u"gemini"_s);
    QQuickWindow *window = stage.openMain();
    QVERIFY(!control(window, generate)->isEnabled());
    type(window, u"  "_s);
    QVERIFY(control(window, generate)->isEnabled());
}

void ContentViewTest::switchesWriteTheManager_data()
{
    QTest::addColumn<QString>("title");
    QTest::addColumn<QByteArray>("property");
    QTest::newRow("4K") << u"4K resolution"_s << "fourKEnabled"_ba;
    QTest::newRow("NSFW") << u"NSFW"_s << "nsfwEnabled"_ba;
    QTest::newRow("auto") << u"Auto-generate"_s << "autoEnabled"_ba;
}

void ContentViewTest::switchesWriteTheManager()
{
    QFETCH(QString, title);
    QFETCH(QByteArray, property);
    Stage stage;
    QQuickWindow *window = stage.openMain();
    QQuickItem *toggle = control(window, title);
    QCOMPARE(toggle->property("checked").toBool(), false);
    for (const bool on : {true, false, true}) {
        click(toggle);
        QCOMPARE(stage.manager().property(property.constData()).toBool(), on);
        QCOMPARE(toggle->property("checked").toBool(), on);
    }
    stage.manager().setProperty(property.constData(), false);
    QCOMPARE(toggle->property("checked").toBool(), false);
}

void ContentViewTest::overrideGreysNsfwOutAndKeepsIt()
{
    Stage stage;
    stage.settings.setValue(u"providerOverride"_s, u"openai"_s);
    stage.manager().setNsfwEnabled(true);
    QQuickWindow *window = stage.openMain();
    QQuickItem *nsfw = control(window, u"NSFW"_s);
    QVERIFY(!nsfw->isEnabled());
    QVERIFY(nsfw->property("checked").toBool());
    QVERIFY(stage.manager().nsfwEnabled());
    QVERIFY(label(window, u"NSFW unavailable with OpenAI"_s));
}

void ContentViewTest::overrideWithoutNsfwNeedsNoNote()
{
    Stage stage;
    stage.settings.setValue(u"providerOverride"_s, u"openai"_s);
    QQuickWindow *window = stage.openMain();
    QVERIFY(!control(window, u"NSFW"_s)->isEnabled());
    QVERIFY(!label(window, u"NSFW unavailable with OpenAI"_s));
    stage.settings.remove(u"providerOverride"_s);
    stage.manager().refreshDerived();
    stage.manager().setNsfwEnabled(true);
    QVERIFY(control(window, u"NSFW"_s)->isEnabled());
    QVERIFY(!label(window, u"NSFW unavailable with OpenAI"_s));
}

void ContentViewTest::disabledSwitchIgnoresClicksAndKeys()
{
    Stage stage;
    stage.settings.setValue(u"providerOverride"_s, u"openai"_s);
    QQuickWindow *window = stage.openMain();
    QQuickItem *nsfw = control(window, u"NSFW"_s);
    click(nsfw);
    QMetaObject::invokeMethod(nsfw, "userToggle");
    QVERIFY(!nsfw->property("checked").toBool());
    QVERIFY(!stage.manager().nsfwEnabled());
}

void ContentViewTest::buttonStartsARun()
{
    Stage stage;
    Keychain::save(key, u"gemini"_s);
    stage.manager().setPrompt(u"a lake"_s);
    stage.server.enqueue(core::fakes::ManagerFixture::geminiAnswer("picture"));
    QQuickWindow *window = stage.openMain();
    click(control(window, generate));
    QTRY_COMPARE(stage.manager().status(), u"Wallpaper set!"_s);
    QCOMPARE(stage.server.requests().size(), 1);
}

void ContentViewTest::buttonShowsARunAndStartsNoSecond()
{
    Stage stage;
    Keychain::save(key, u"gemini"_s);
    stage.manager().setPrompt(u"a lake"_s);
    stage.server.enqueue(
        HttpAnswer{.body = core::fakes::ManagerFixture::geminiAnswer("picture"), .held = true});
    QQuickWindow *window = stage.openMain();
    click(control(window, generate));
    QQuickItem *button = control(window, generating);
    QVERIFY(button);
    QVERIFY(!control(window, generate));
    QVERIFY(!button->isEnabled());
    QVERIFY(itemOfType(button, "Spinner"));
    const QRectF spinner = place(itemOfType(button, "Spinner"));
    QCOMPARE(place(label(button, generating)).left() - spinner.right(), 4.0);
    click(button);
    QTRY_COMPARE(stage.server.requests().size(), 1);
    stage.server.release();
    QTRY_VERIFY(control(window, generate));
    QVERIFY(!itemOfType(control(window, generate), "Spinner"));
    QCOMPARE(stage.server.requests().size(), 1);
}

void ContentViewTest::ampersandIsShownAsItIs()
{
    Stage stage;
    QQuickItem *button = control(stage.openMain(), generate);
    QVERIFY(label(button, generate));
    QCOMPARE(label(button, generate)->property("truncated").toBool(), false);
    QCOMPARE(place(button).width(), 240.0);
}

void ContentViewTest::altSpaceIsNoMnemonic()
{
    Stage stage;
    Keychain::save(key, u"gemini"_s);
    stage.manager().setPrompt(u"a lake"_s);
    QQuickWindow *window = stage.openMain();
    press(window, Qt::Key_Space, Qt::AltModifier);
    QVERIFY(!stage.manager().isLoading());
}

void ContentViewTest::providerLineNamesTheServices_data()
{
    QTest::addColumn<QString>("providerOverride");
    QTest::addColumn<bool>("nsfw");
    QTest::addColumn<bool>("fourK");
    QTest::addColumn<QStringList>("shown");
    QTest::newRow("Gemini") << QString() << false << false << QStringList{u"Gemini"_s};
    QTest::newRow("Gemini draws 4K itself")
        << QString() << false << true << QStringList{u"Gemini"_s};
    QTest::newRow("Grok") << QString() << true << false << QStringList{u"Grok"_s};
    QTest::newRow("Grok in 4K") << QString() << true << true
                                << QStringList{u"Grok"_s, u"+ Gemini 4K"_s};
    QTest::newRow("OpenAI in 4K") << u"openai"_s << true << true
                                  << QStringList{u"OpenAI"_s, u"+ Gemini 4K"_s};
}

void ContentViewTest::providerLineNamesTheServices()
{
    QFETCH(QString, providerOverride);
    QFETCH(bool, nsfw);
    QFETCH(bool, fourK);
    QFETCH(QStringList, shown);
    Stage stage;
    if (!providerOverride.isEmpty()) {
        stage.settings.setValue(u"providerOverride"_s, providerOverride);
    }
    stage.manager().setNsfwEnabled(nsfw);
    stage.manager().setFourKEnabled(fourK);
    QQuickWindow *window = stage.openMain();
    QStringList line;
    const auto labels
        = itemsOfType(itemOfType(window->contentItem(), "ProviderLine"), "PlainLabel");
    for (const QQuickItem *text : labels) {
        line << text->property("text").toString();
    }
    QCOMPARE(line, shown);
}

void ContentViewTest::missingKeysAreListedInOrderWithOneHint()
{
    Stage stage;
    stage.manager().setNsfwEnabled(true);
    stage.manager().setFourKEnabled(true);
    QQuickWindow *window = stage.openMain();
    QStringList lines;
    const auto labels = itemsOfType(itemOfType(window->contentItem(), "MissingKeys"), "PlainLabel");
    for (const QQuickItem *text : labels) {
        lines << text->property("text").toString();
    }
    const QStringList expected{u"Missing Grok API key"_s,
        u"Missing Gemini (for 4K upscale) API key"_s, u"Open Settings (⌘,)"_s};
    lines.sort();
    QCOMPARE(lines, (QStringList{expected[1], expected[0], expected[2]}));
    for (int line = 1; line < 3; ++line) {
        const QRectF above = place(label(window, expected[line - 1]));
        QCOMPARE(place(label(window, expected[line])).top() - above.bottom(), 4.0);
    }
    QVERIFY(!control(window, u"Open Settings (⌘,)"_s));
}

void ContentViewTest::noMissingKeyNoBlock()
{
    Stage stage;
    Keychain::save(QString(), u"gemini"_s); // An empty key is a key.
    QQuickWindow *window = stage.openMain();
    QVERIFY(!itemOfType(window->contentItem(), "MissingKeys"));
}

void ContentViewTest::keySavedElsewhereShowsWhenTheWindowBecomesActive()
{
    Stage stage;
    QQuickWindow *window = stage.openMain();
    QVERIFY(label(window, u"Missing Gemini API key"_s));
    QVERIFY(stage.openSettings());
    Keychain::save(key, u"gemini"_s);
    window->requestActivate();
    QTRY_VERIFY(!label(window, u"Missing Gemini API key"_s));
}

void ContentViewTest::scheduleRowsFollowTheSwitch()
{
    Stage stage;
    QQuickWindow *window = stage.openMain();
    QVERIFY(!label(window, u"Every"_s));
    QVERIFY(!picker(window));
    click(control(window, u"Auto-generate"_s));
    QVERIFY(label(window, u"Every"_s));
    QCOMPARE(place(picker(window)).width(), 110.0);
    const QString next = stage.manager().shortTime(stage.manager().nextFireDate());
    QVERIFY(label(window, u"Next: "_s + next));
    stage.clock.pass(std::chrono::minutes(30));
    QVERIFY(!label(window, u"Next: "_s + next));
    click(control(window, u"Auto-generate"_s));
    QVERIFY(!label(window, u"Every"_s));
    QVERIFY(texts(window).filter(u"Next: "_s).isEmpty());
}

void ContentViewTest::pickerOffersAllIntervals()
{
    Stage stage;
    stage.manager().setAutoEnabled(true);
    QQuickWindow *window = stage.openMain();
    const QStringList expected{u"5 min"_s, u"15 min"_s, u"30 min"_s, u"1 hour"_s, u"2 hours"_s,
        u"4 hours"_s, u"8 hours"_s, u"12 hours"_s, u"24 hours"_s};
    QCOMPARE(picker(window)->property("model").toStringList(), expected);
    QCOMPARE(picker(window)->property("displayText").toString(), u"30 min"_s);
}

void ContentViewTest::pickerWritesTheChoice()
{
    Stage stage;
    stage.manager().setAutoEnabled(true);
    QQuickWindow *window = stage.openMain();
    click(picker(window));
    QTRY_VERIFY(label(window, u"2 hours"_s));
    click(label(window, u"2 hours"_s));
    QCOMPARE(stage.manager().intervalMinutes(), 120);
    QCOMPARE(picker(window)->property("displayText").toString(), u"2 hours"_s);
    stage.manager().setIntervalMinutes(5);
    QCOMPARE(picker(window)->property("displayText").toString(), u"5 min"_s);
}

void ContentViewTest::unknownIntervalSelectsNothingAndStays()
{
    Stage stage;
    stage.settings.setValue(u"intervalMinutes"_s, 7);
    stage.manager().setAutoEnabled(true);
    QQuickWindow *window = stage.openMain();
    QCOMPARE(picker(window)->property("currentIndex").toInt(), -1);
    QCOMPARE(picker(window)->property("displayText").toString(), QString());
    QCOMPARE(stage.manager().intervalMinutes(), 7);
    QCOMPARE(stage.settings.value(u"intervalMinutes"_s).toInt(), 7);
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
