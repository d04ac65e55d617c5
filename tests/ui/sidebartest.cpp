#include "stage.h"

#include "storage/keychain.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace ui::fakes;
using storage::Keychain;
using testlibs::HttpAnswer;

namespace {
const auto generate = u"Generate & Set Wallpaper"_s;
const auto generating = u"Generating..."_s;
const auto key = u"canary-key"_s;
} // namespace

/// The sidebar of the main window, from the prompt to the schedule.
class SidebarTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
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
};

void SidebarTest::promptIsShownAndEdited()
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

void SidebarTest::openingLeavesAStrangePromptAlone()
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

void SidebarTest::editorGrowsWithItsText_data()
{
    QTest::addColumn<int>("lines");
    QTest::addColumn<qreal>("least");
    QTest::addColumn<qreal>("most");
    QTest::newRow("no text: the least height") << 0 << 80.0 << 80.0;
    QTest::newRow("two lines: the least height") << 1 << 80.0 << 80.0;
    QTest::newRow("six lines: in between") << 5 << 81.0 << 119.0;
    QTest::newRow("many lines: the greatest height") << 40 << 120.0 << 120.0;
}

void SidebarTest::editorGrowsWithItsText()
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

void SidebarTest::emptyPromptDisablesTheButtonAndSaysNothing()
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

void SidebarTest::promptOfSpacesEnablesTheButton()
{
    Stage stage;
    Keychain::save(key, u"gemini"_s);
    QQuickWindow *window = stage.openMain();
    QVERIFY(!control(window, generate)->isEnabled());
    type(window, u"  "_s);
    QVERIFY(control(window, generate)->isEnabled());
}

void SidebarTest::switchesWriteTheManager_data()
{
    QTest::addColumn<QString>("title");
    QTest::addColumn<QByteArray>("property");
    QTest::newRow("4K") << u"4K resolution"_s << "fourKEnabled"_ba;
    QTest::newRow("NSFW") << u"NSFW"_s << "nsfwEnabled"_ba;
    QTest::newRow("auto") << u"Auto-generate"_s << "autoEnabled"_ba;
}

void SidebarTest::switchesWriteTheManager()
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

void SidebarTest::overrideGreysNsfwOutAndKeepsIt()
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

void SidebarTest::overrideWithoutNsfwNeedsNoNote()
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

void SidebarTest::disabledSwitchIgnoresClicksAndKeys()
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

void SidebarTest::buttonStartsARun()
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

void SidebarTest::buttonShowsARunAndStartsNoSecond()
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

void SidebarTest::ampersandIsShownAsItIs()
{
    Stage stage;
    QQuickItem *button = control(stage.openMain(), generate);
    QVERIFY(label(button, generate));
    QCOMPARE(label(button, generate)->property("truncated").toBool(), false);
    QCOMPARE(place(button).width(), 240.0);
}

void SidebarTest::altSpaceIsNoMnemonic()
{
    Stage stage;
    Keychain::save(key, u"gemini"_s);
    stage.manager().setPrompt(u"a lake"_s);
    QQuickWindow *window = stage.openMain();
    press(window, Qt::Key_Space, Qt::AltModifier);
    QVERIFY(!stage.manager().isLoading());
}

void SidebarTest::providerLineNamesTheServices_data()
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

void SidebarTest::providerLineNamesTheServices()
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

void SidebarTest::missingKeysAreListedInOrderWithOneHint()
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

void SidebarTest::noMissingKeyNoBlock()
{
    Stage stage;
    Keychain::save(QString(), u"gemini"_s); // An empty key is a key.
    QQuickWindow *window = stage.openMain();
    QVERIFY(!itemOfType(window->contentItem(), "MissingKeys"));
}

void SidebarTest::keySavedElsewhereShowsWhenTheWindowBecomesActive()
{
    Stage stage;
    QQuickWindow *window = stage.openMain();
    QVERIFY(label(window, u"Missing Gemini API key"_s));
    QVERIFY(stage.openSettings());
    Keychain::save(key, u"gemini"_s);
    window->requestActivate();
    QTRY_VERIFY(!label(window, u"Missing Gemini API key"_s));
}

void SidebarTest::scheduleRowsFollowTheSwitch()
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

void SidebarTest::pickerOffersAllIntervals()
{
    Stage stage;
    stage.manager().setAutoEnabled(true);
    QQuickWindow *window = stage.openMain();
    const QStringList expected{u"5 min"_s, u"15 min"_s, u"30 min"_s, u"1 hour"_s, u"2 hours"_s,
        u"4 hours"_s, u"8 hours"_s, u"12 hours"_s, u"24 hours"_s};
    QCOMPARE(picker(window)->property("model").toStringList(), expected);
    QCOMPARE(picker(window)->property("displayText").toString(), u"30 min"_s);
}

void SidebarTest::pickerWritesTheChoice()
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

void SidebarTest::unknownIntervalSelectsNothingAndStays()
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

QTEST_MAIN(SidebarTest)
#include "sidebartest.moc"
