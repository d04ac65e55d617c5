#include "desktop/macdesktoppicture.h"
#include "doubles/workspace.h"

#include <QTest>

using namespace Qt::StringLiterals;
using desktop::DesktopPicture;
using desktop::Screen;
using desktop::SetResult;
using doubles::workspace;

namespace {

const auto file = u"/Users/ann/Pictures/Plenaura/wallpaper_2026-03-14_09-26-53.png"_s;

SetResult set(const QString &path = file, const Screen &screen = {u"1"_s, {}})
{
    return QCoro::waitFor(DesktopPicture::system()->setPicture(path, screen));
}

} // namespace

/// The adapter for macOS, on a stand-in for AppKit that notes what it is asked.
class MacDesktopPictureTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { workspace() = {}; }

    void theMainScreenIsTheSystems();
    void withoutAScreenThereIsNoMainScreen();
    void onlyTheGivenScreenIsSet();
    void aScreenThatIsGoneIsAnError();
    void thePictureIsSetWithoutOptionsAndWithAnErrorSlot();
    void theFileIsPassedAsAFileUrl_data();
    void theFileIsPassedAsAFileUrl();
    void successIsSuccess();
    void aRefusalIsTheSystemsOwnSentence();
    void aPathThatIsNotTextNeverReachesTheSystem_data();
    void aPathThatIsNotTextNeverReachesTheSystem();
};

void MacDesktopPictureTest::theMainScreenIsTheSystems()
{
    workspace().screens = {1, 2, 3};
    workspace().mainScreen = 2;
    QCOMPARE(DesktopPicture::system()->mainScreen(), (Screen{u"2"_s, {}}));
}

void MacDesktopPictureTest::withoutAScreenThereIsNoMainScreen()
{
    workspace().screens = {};
    workspace().mainScreen = {};
    QCOMPARE(DesktopPicture::system()->mainScreen(), std::nullopt);
}

void MacDesktopPictureTest::onlyTheGivenScreenIsSet()
{
    workspace().screens = {1, 2, 3};
    QVERIFY(set(file, {u"2"_s, {}}));
    QCOMPARE(workspace().calls.size(), 1);
    QCOMPARE(workspace().calls.first().screen, 2);
}

void MacDesktopPictureTest::aScreenThatIsGoneIsAnError()
{
    const SetResult result = set(file, {u"2"_s, {}});
    QVERIFY(!result);
    QCOMPARE(result.error(), u"No screen found"_s);
    QVERIFY(workspace().calls.isEmpty());
}

void MacDesktopPictureTest::thePictureIsSetWithoutOptionsAndWithAnErrorSlot()
{
    std::ignore = set();
    QCOMPARE(workspace().calls.size(), 1);
    QVERIFY2(workspace().calls.first().options, "there must be a dictionary");
    QCOMPARE(workspace().calls.first().options, 0);
    QVERIFY(workspace().calls.first().hasErrorSlot);
}

void MacDesktopPictureTest::theFileIsPassedAsAFileUrl_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("as the program names it") << file;
    QTest::newRow("a space and a number sign") << u"/tmp/a b#1.png"_s;
    QTest::newRow("percent signs") << u"/tmp/100%20.png"_s;
    QTest::newRow("a question mark") << u"/tmp/what?.png"_s;
    QTest::newRow("beyond ASCII") << u"/Users/Jörg/Bilder/вечер 🌆.png"_s;
}

void MacDesktopPictureTest::theFileIsPassedAsAFileUrl()
{
    QFETCH(const QString, path);
    std::ignore = set(path);
    QCOMPARE(workspace().calls.size(), 1);
    QVERIFY(workspace().calls.first().hasFileUrl);
    QCOMPARE(workspace().calls.first().path, path);
}

void MacDesktopPictureTest::successIsSuccess()
{
    QVERIFY(set());
}

void MacDesktopPictureTest::aRefusalIsTheSystemsOwnSentence()
{
    workspace().refusal = u"Die Datei „x.png“ existiert nicht."_s;
    const SetResult result = set();
    QVERIFY(!result);
    QCOMPARE(result.error(), *workspace().refusal);
}

void MacDesktopPictureTest::aPathThatIsNotTextNeverReachesTheSystem_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("the first half of a character alone") << u"/tmp/"_s + QChar(0xd83c) + u".png"_s;
    QTest::newRow("the second half alone") << u"/tmp/"_s + QChar(0xdf06) + u".png"_s;
    QTest::newRow("the halves the wrong way round")
        << u"/tmp/"_s + QChar(0xdf06) + QChar(0xd83c) + u".png"_s;
}

void MacDesktopPictureTest::aPathThatIsNotTextNeverReachesTheSystem()
{
    QFETCH(const QString, path);
    const SetResult result = set(path);
    QVERIFY(workspace().calls.isEmpty());
    QVERIFY(!result);
    QVERIFY(!result.error().isEmpty());
}

QTEST_GUILESS_MAIN(MacDesktopPictureTest)
#include "macdesktoppicturetest.moc"
