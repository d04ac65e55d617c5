#include "ui/secrettext.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QKeyCombination>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using ui::SecretText;

namespace {

const auto secretKey = u"abcdef"_s;

constexpr int nothingEdited = -1;

} // namespace

/// A secret that is edited by people and programs that see its bullets only.
class SecretTextTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keysEdit_data();
    void keysEdit();
    void pastedTextIsOneLine_data();
    void pastedTextIsOneLine();
    void selectionOfTheDesktopIsPastedAsOneLine();
    void editsOfTheBulletsKeepTheCharactersBehindThem_data();
    void editsOfTheBulletsKeepTheCharactersBehindThem();
    void replacingBeyondTheEndsStaysWithinTheText();
};

void SecretTextTest::keysEdit_data()
{
    QTest::addColumn<QKeyCombination>("key");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<int>("start");
    QTest::addColumn<int>("end");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<int>("place");
    const QKeyCombination backspace(Qt::Key_Backspace);
    const QKeyCombination remove(Qt::Key_Delete);
    const QKeyCombination wordBack(Qt::ControlModifier | Qt::Key_Backspace);
    const QKeyCombination wordOn(Qt::ControlModifier | Qt::Key_Delete);
    const QKeyCombination lineOn(Qt::ControlModifier | Qt::Key_K);
    const QKeyCombination cut(Qt::ControlModifier | Qt::Key_X);
    const QKeyCombination undo(Qt::ControlModifier | Qt::Key_Z);
    const QKeyCombination redo(Qt::ControlModifier | Qt::ShiftModifier | Qt::Key_Z);
    const QKeyCombination letter(Qt::Key_X);
    const auto none = u""_s;
    QTest::newRow("a letter") << letter << u"x"_s << 3 << 3 << u"abcxdef"_s << 4;
    QTest::newRow("a letter over a selection") << letter << u"x"_s << 2 << 4 << u"abxef"_s << 3;
    QTest::newRow("Backspace") << backspace << u"\b"_s << 3 << 3 << u"abdef"_s << 2;
    QTest::newRow("Backspace, selected") << backspace << u"\b"_s << 2 << 4 << u"abef"_s << 2;
    QTest::newRow("Delete") << remove << u"\x7f"_s << 3 << 3 << u"abcef"_s << 3;
    QTest::newRow("Delete, selected") << remove << u"\x7f"_s << 2 << 4 << u"abef"_s << 2;
    QTest::newRow("Delete at the end") << remove << u"\x7f"_s << 6 << 6 << secretKey << 6;
    QTest::newRow("cut") << cut << u"\x18"_s << 2 << 4 << u"abef"_s << 2;
    QTest::newRow("to the start") << wordBack << u"\b"_s << 2 << 4 << u"ef"_s << 0;
    QTest::newRow("to the end of the word") << wordOn << u"\x7f"_s << 2 << 4 << u"ab"_s << 2;
    QTest::newRow("to the end of the line") << lineOn << u"\v"_s << 2 << 4 << u"ab"_s << 2;
    QTest::newRow("undo") << undo << u"\x1a"_s << 3 << 3 << secretKey << 3;
    QTest::newRow("redo") << redo << u"\x1a"_s << 3 << 3 << secretKey << 3;
    QTest::newRow("Tab") << QKeyCombination(Qt::Key_Tab) << u"\t"_s << 3 << 3 << secretKey
                         << nothingEdited;
    QTest::newRow("an arrow") << QKeyCombination(Qt::Key_Left) << none << 3 << 3 << secretKey
                              << nothingEdited;
    for (const auto modifier : {Qt::ControlModifier, Qt::AltModifier, Qt::MetaModifier}) {
        QTest::addRow("a letter as a command, %x", uint(modifier)) << QKeyCombination(
            modifier, Qt::Key_G) << u"g"_s << 3 << 3 << secretKey << nothingEdited;
    }
}

void SecretTextTest::keysEdit()
{
    QFETCH(const QKeyCombination, key);
    QFETCH(const QString, typed);
    QFETCH(const int, start);
    QFETCH(const int, end);
    SecretText secret;
    secret.setText(secretKey);
    const int place
        = secret.edit(key.key(), key.keyboardModifiers().toInt(), typed, start, end, end);
    QTEST(secret.text(), "expected");
    QTEST(place, "place");
    QCOMPARE(secret.masked(), QString(secret.text().size(), u'\u2022'));
}

void SecretTextTest::pastedTextIsOneLine_data()
{
    QTest::addColumn<QString>("pasted");
    QTest::newRow("line ends") << u"one\r\ntwo\n"_s;
    QTest::newRow("a tabulator") << u"one\ttwo"_s;
    QTest::newRow("a line separator") << u"one\u2028two"_s;
}

void SecretTextTest::pastedTextIsOneLine()
{
    QFETCH(const QString, pasted);
    QGuiApplication::clipboard()->setText(pasted);
    SecretText secret;
    secret.setText(secretKey);
    const int place = secret.edit(Qt::Key_V, int(Qt::ControlModifier), u"\x16"_s, 2, 4, 4);
    QCOMPARE(secret.text(), u"abonetwoef"_s);
    QCOMPARE(place, 8);
}

void SecretTextTest::selectionOfTheDesktopIsPastedAsOneLine()
{
    QVERIFY(QGuiApplication::clipboard()->supportsSelection());
    QGuiApplication::clipboard()->setText(u"copied"_s);
    QGuiApplication::clipboard()->setText(u"one\ntwo"_s, QClipboard::Selection);
    SecretText secret;
    secret.setText(secretKey);
    QCOMPARE(secret.pasteSelection(2), 8);
    QCOMPARE(secret.text(), u"abonetwocdef"_s);
}

void SecretTextTest::editsOfTheBulletsKeepTheCharactersBehindThem_data()
{
    QTest::addColumn<QString>("edited");
    QTest::addColumn<QString>("expected");
    QTest::newRow("nothing") << u"••••••"_s << secretKey;
    QTest::newRow("put in between") << u"••x••••"_s << u"abxcdef"_s;
    QTest::newRow("put in front") << u"x••••••"_s << u"xabcdef"_s;
    QTest::newRow("put behind") << u"••••••x"_s << u"abcdefx"_s;
    QTest::newRow("a bullet put behind") << u"•••••••"_s << u"abcdef•"_s;
    QTest::newRow("a letter and a bullet put in between") << u"••x•••••"_s << u"abx•cdef"_s;
    QTest::newRow("replaced in between") << u"••x••"_s << u"abxef"_s;
    QTest::newRow("replaced by more") << u"•12345•"_s << u"a12345f"_s;
    QTest::newRow("shortened") << u"••••"_s << u"abcd"_s;
    QTest::newRow("all replaced") << u"new"_s << u"new"_s;
    QTest::newRow("all replaced by more") << u"something new"_s << u"something new"_s;
    QTest::newRow("emptied") << u""_s << u""_s;
    QTest::newRow("with a line end") << u"••••••\n"_s << secretKey;
}

void SecretTextTest::editsOfTheBulletsKeepTheCharactersBehindThem()
{
    QFETCH(const QString, edited);
    SecretText secret;
    secret.setText(secretKey);
    const QSignalSpy changed(&secret, &SecretText::changed);
    secret.takeEdit(edited);
    QTEST(secret.text(), "expected");
    QCOMPARE(changed.count(), secret.text() != secretKey ? 1 : 0);
}

void SecretTextTest::replacingBeyondTheEndsStaysWithinTheText()
{
    SecretText secret;
    secret.setText(secretKey);
    QCOMPARE(secret.replace(-3, 2, u"x"_s), 1);
    QCOMPARE(secret.text(), u"xcdef"_s);
    QCOMPARE(secret.replace(4, 99, u"y"_s), 5);
    QCOMPARE(secret.text(), u"xcdey"_s);
    QCOMPARE(secret.replace(3, 1, u"z"_s), 4);
    QCOMPARE(secret.text(), u"xcdzey"_s);
}

QTEST_MAIN(SecretTextTest)
#include "secrettexttest.moc"
