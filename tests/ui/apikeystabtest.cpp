#include "stage.h"

#include "storage/keychain.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace ui::fakes;
using storage::Keychain;

namespace {

const auto key = u"canary-key"_s;
const auto savedNote = u"Saved in Keychain"_s;

QQuickItem *row(QQuickWindow *window, const QString &service)
{
    QQuickItem *field = control(window, service + u" API Key"_s);
    return field ? field->parentItem() : nullptr;
}

QQuickItem *field(QQuickWindow *window, const QString &service)
{
    return control(row(window, service), service + u" API Key"_s);
}

void enter(QQuickItem *field, const QString &text)
{
    field->forceActiveFocus(Qt::MouseFocusReason);
    type(field->window(), text);
}

bool isSaved(QQuickWindow *window, const QString &service)
{
    QQuickItem *one = row(window, service);
    return control(one, u"Update"_s) && trash(one) && label(one, savedNote)
        && !control(one, u"Save"_s);
}

bool isNotSaved(QQuickWindow *window, const QString &service)
{
    QQuickItem *one = row(window, service);
    return control(one, u"Save"_s) && !trash(one) && !label(one, savedNote)
        && !control(one, u"Update"_s);
}

} // namespace

/// The keys in the settings window.
class APIKeysTabTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void rowsKeepTheirDistances();
    void emptyStoreShowsThreeEmptyRows();
    void saveStoresTheKeyAndSwitchesTheRow_data();
    void saveStoresTheKeyAndSwitchesTheRow();
    void saveKeepsTheTextAndTheBlanks();
    void trashRemovesTheKeyAtOnce();
    void clearedFieldDisablesUpdateOnly();
    void onlyOpenAIStored();
    void emptyKeyCountsAsSaved();
    void updateReplacesTheKey();
    void nothingIsStoredWhileTyping();
    void comingBackReloadsStoredKeysOnly();
    void editingKeysWorkOnTheSecret_data();
    void editingKeysWorkOnTheSecret();
    void keyIsNowhereInTheScene();
    void keyCannotBeCopied();
};

void APIKeysTabTest::rowsKeepTheirDistances()
{
    Stage stage;
    Keychain::save(key, u"gemini"_s);
    QQuickWindow *window = stage.openSettings();
    QQuickItem *gemini = row(window, u"Gemini"_s);
    const QRectF update = place(control(gemini, u"Update"_s));
    QCOMPARE(update.left() - place(field(window, u"Gemini"_s)).right(), 8.0);
    QCOMPARE(place(trash(gemini)).left() - update.right(), 8.0);
    const QRectF save = place(control(row(window, u"Grok"_s), u"Save"_s));
    QCOMPARE(save.left() - place(field(window, u"Grok"_s)).right(), 8.0);
}

void APIKeysTabTest::emptyStoreShowsThreeEmptyRows()
{
    Stage stage;
    QQuickWindow *window = stage.openSettings();
    for (const QString &service : {u"Gemini"_s, u"Grok"_s, u"OpenAI"_s}) {
        QVERIFY(isNotSaved(window, service));
        QCOMPARE(field(window, service)->property("text").toString(), QString());
        QVERIFY(!control(row(window, service), u"Save"_s)->isEnabled());
    }
}

void APIKeysTabTest::saveStoresTheKeyAndSwitchesTheRow_data()
{
    QTest::addColumn<QString>("service");
    QTest::addColumn<QString>("identifier");
    QTest::newRow("Gemini") << u"Gemini"_s << u"gemini"_s;
    QTest::newRow("Grok") << u"Grok"_s << u"grok"_s;
    QTest::newRow("OpenAI") << u"OpenAI"_s << u"openai"_s;
}

void APIKeysTabTest::saveStoresTheKeyAndSwitchesTheRow()
{
    QFETCH(QString, service);
    QFETCH(QString, identifier);
    Stage stage;
    QQuickWindow *window = stage.openSettings();
    enter(field(window, service), key);
    click(control(row(window, service), u"Save"_s));
    for (const QString &other : {u"gemini"_s, u"grok"_s, u"openai"_s}) {
        QCOMPARE(Keychain::load(other).value_or(QString()), other == identifier ? key : QString());
    }
    QVERIFY(isSaved(window, service));
    QQuickItem *note = label(row(window, service), savedNote);
    const auto color = note->property("color").value<QColor>();
    QVERIFY(color.green() > color.red() && color.green() > color.blue());
    QCOMPARE(itemOfType(note->parentItem(), "ui::Symbol")->property("name").toString(),
        u"checkmark.circle.fill"_s);
}

void APIKeysTabTest::saveKeepsTheTextAndTheBlanks()
{
    Stage stage;
    QQuickWindow *window = stage.openSettings();
    enter(field(window, u"Gemini"_s), u"  two words "_s);
    click(control(row(window, u"Gemini"_s), u"Save"_s));
    QCOMPARE(Keychain::load(u"gemini"_s), u"  two words "_s);
    QCOMPARE(field(window, u"Gemini"_s)->property("text").toString().size(), 12);
}

void APIKeysTabTest::trashRemovesTheKeyAtOnce()
{
    Stage stage;
    Keychain::save(key, u"grok"_s);
    QQuickWindow *window = stage.openSettings();
    QVERIFY(isSaved(window, u"Grok"_s));
    click(trash(row(window, u"Grok"_s)));
    QVERIFY(!Keychain::load(u"grok"_s));
    QVERIFY(isNotSaved(window, u"Grok"_s));
    QCOMPARE(field(window, u"Grok"_s)->property("text").toString(), QString());
    QVERIFY(!control(row(window, u"Grok"_s), u"Save"_s)->isEnabled());
}

void APIKeysTabTest::clearedFieldDisablesUpdateOnly()
{
    Stage stage;
    Keychain::save(key, u"gemini"_s);
    QQuickWindow *window = stage.openSettings();
    field(window, u"Gemini"_s)->forceActiveFocus();
    press(window, Qt::Key_A, Qt::ControlModifier);
    press(window, Qt::Key_Delete);
    QVERIFY(isSaved(window, u"Gemini"_s));
    QVERIFY(!control(row(window, u"Gemini"_s), u"Update"_s)->isEnabled());
    QVERIFY(trash(row(window, u"Gemini"_s))->isEnabled());
    QCOMPARE(Keychain::load(u"gemini"_s), key);
}

void APIKeysTabTest::onlyOpenAIStored()
{
    Stage stage;
    Keychain::save(key, u"openai"_s);
    QQuickWindow *window = stage.openSettings();
    QVERIFY(isSaved(window, u"OpenAI"_s));
    QCOMPARE(
        field(window, u"OpenAI"_s)->property("text").toString(), QString(key.size(), u'\u2022'));
    QVERIFY(isNotSaved(window, u"Gemini"_s));
    QVERIFY(isNotSaved(window, u"Grok"_s));
}

void APIKeysTabTest::emptyKeyCountsAsSaved()
{
    Stage stage;
    Keychain::save(QString(), u"gemini"_s);
    QQuickWindow *window = stage.openSettings();
    QVERIFY(isSaved(window, u"Gemini"_s));
    QVERIFY(!control(row(window, u"Gemini"_s), u"Update"_s)->isEnabled());
}

void APIKeysTabTest::updateReplacesTheKey()
{
    Stage stage;
    Keychain::save(key, u"gemini"_s);
    QQuickWindow *window = stage.openSettings();
    field(window, u"Gemini"_s)->forceActiveFocus();
    press(window, Qt::Key_End);
    type(window, u"-2"_s);
    click(control(row(window, u"Gemini"_s), u"Update"_s));
    QCOMPARE(Keychain::load(u"gemini"_s), key + u"-2"_s);
    QVERIFY(isSaved(window, u"Gemini"_s));
}

void APIKeysTabTest::nothingIsStoredWhileTyping()
{
    Stage stage;
    QQuickWindow *window = stage.openSettings();
    enter(field(window, u"Gemini"_s), key);
    press(window, Qt::Key_Return);
    QVERIFY(!Keychain::load(u"gemini"_s));
    window->close();
    QVERIFY(!Keychain::load(u"gemini"_s));
}

void APIKeysTabTest::comingBackReloadsStoredKeysOnly()
{
    Stage stage;
    Keychain::save(key, u"gemini"_s);
    QQuickWindow *window = stage.openSettings();
    enter(field(window, u"Gemini"_s), u"x"_s);
    enter(field(window, u"Grok"_s), u"unsaved"_s);
    QVERIFY(showAdvanced(window));
    click(control(window, u"API Keys"_s));
    QTRY_VERIFY(field(window, u"Gemini"_s));
    QCOMPARE(field(window, u"Gemini"_s)->property("text").toString().size(), key.size());
    QCOMPARE(field(window, u"Grok"_s)->property("text").toString().size(), 7);
    click(control(row(window, u"Grok"_s), u"Save"_s));
    QCOMPARE(Keychain::load(u"grok"_s), u"unsaved"_s);
}

void APIKeysTabTest::editingKeysWorkOnTheSecret_data()
{
    using Keys = QList<QKeyCombination>;
    QTest::addColumn<QList<QKeyCombination>>("keys");
    QTest::addColumn<QString>("expected");
    const QKeyCombination home{Qt::Key_Home};
    const QKeyCombination left{Qt::Key_Left};
    const QKeyCombination right{Qt::Key_Right};
    QTest::newRow("typing at the end") << Keys{Qt::Key_X} << u"abcdx"_s;
    QTest::newRow("typing at the start") << Keys{home, Qt::Key_X} << u"xabcd"_s;
    QTest::newRow("typing in between") << Keys{left, left, Qt::Key_X} << u"abxcd"_s;
    QTest::newRow("Backspace in between") << Keys{left, Qt::Key_Backspace} << u"abd"_s;
    QTest::newRow("Delete in between") << Keys{home, right, Qt::Key_Delete} << u"acd"_s;
    QTest::newRow("Backspace at the start does nothing")
        << Keys{home, Qt::Key_Backspace} << u"abcd"_s;
    QTest::newRow("typing over a selection") << Keys{home, Qt::ShiftModifier | Qt::Key_Right,
        Qt::ShiftModifier | Qt::Key_Right, Qt::Key_X}
                                             << u"xcd"_s;
    QTest::newRow("pasting") << Keys{home, Qt::ControlModifier | Qt::Key_V} << u"-pasted-abcd"_s;
    QTest::newRow("pasting over everything")
        << Keys{Qt::ControlModifier | Qt::Key_A, Qt::ControlModifier | Qt::Key_V} << u"-pasted-"_s;
    QTest::newRow("undo undoes nothing")
        << Keys{Qt::Key_X, Qt::ControlModifier | Qt::Key_Z} << u"abcdx"_s;
    QTest::newRow("words are not told apart")
        << Keys{left, Qt::ControlModifier | Qt::Key_Backspace} << u"d"_s;
}

void APIKeysTabTest::editingKeysWorkOnTheSecret()
{
    QFETCH(QList<QKeyCombination>, keys);
    QFETCH(QString, expected);
    Stage stage;
    Keychain::save(u"abcd"_s, u"gemini"_s);
    QGuiApplication::clipboard()->setText(u"-pasted-\n"_s);
    QQuickWindow *window = stage.openSettings();
    field(window, u"Gemini"_s)->forceActiveFocus(Qt::TabFocusReason);
    press(window, Qt::Key_End);
    for (const QKeyCombination combination : keys) {
        press(window, combination.key(), combination.keyboardModifiers());
    }
    const QString shown = field(window, u"Gemini"_s)->property("text").toString();
    QCOMPARE(shown, QString(expected.size(), u'\u2022'));
    click(control(row(window, u"Gemini"_s), u"Update"_s));
    QCOMPARE(Keychain::load(u"gemini"_s), expected);
}

void APIKeysTabTest::keyIsNowhereInTheScene()
{
    Stage stage;
    Keychain::save(key, u"gemini"_s);
    QQuickWindow *window = stage.openSettings();
    enter(field(window, u"Grok"_s), u"other-key"_s);
    const auto objects = window->findChildren<QObject *>();
    for (const QObject *object : objects) {
        const QMetaObject *meta = object->metaObject();
        for (int index = 0; index < meta->propertyCount(); ++index) {
            const QString value = meta->property(index).read(object).toString();
            QVERIFY2(!value.contains(key) && !value.contains(u"other-key"), meta->className());
        }
    }
    QVERIFY(objects.size() > 100);
}

void APIKeysTabTest::keyCannotBeCopied()
{
    Stage stage;
    Keychain::save(key, u"gemini"_s);
    QGuiApplication::clipboard()->setText(u"before"_s);
    QQuickWindow *window = stage.openSettings();
    field(window, u"Gemini"_s)->forceActiveFocus();
    press(window, Qt::Key_A, Qt::ControlModifier);
    press(window, Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(QGuiApplication::clipboard()->text(), u"before"_s);
    press(window, Qt::Key_X, Qt::ControlModifier);
    QCOMPARE(QGuiApplication::clipboard()->text(), u"before"_s);
}

QTEST_MAIN(APIKeysTabTest)
#include "apikeystabtest.moc"
