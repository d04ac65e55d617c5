#include "desktop/arrangement.h"

#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;
using desktop::Arrangement;
using desktop::arrangementFromJson;
using desktop::Placement;
using desktop::presentArrangement;
using desktop::Screen;
using desktop::Setting;
using desktop::Shown;

namespace {

const Screen left{u"DP-1"_s, {0, 0, 800, 600}};
const Screen right{u"HDMI-1"_s, {800, 0, 1600, 1200}};

} // namespace

class ArrangementTest : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_folder;

    QString existing(const QString &name)
    {
        QFile file(m_folder.filePath(name));
        return file.open(QIODevice::WriteOnly) ? file.fileName() : QString();
    }
    Arrangement remembered()
    {
        return {u"/composed.png"_s, true, left.name,
            {{left, {existing(u"a.png"_s)}},
                {right, {existing(u"b.png"_s), {0, 0, 1, 1}, Placement::Fit, Qt::blue}}}};
    }

private Q_SLOTS:
    void anOrdinaryPictureIsOnEveryScreen()
    {
        const Setting setting{u"/a.png"_s, Placement::Center, false, Qt::green};
        const Shown shown{u"/a.png"_s, {0, 0, 1, 1}, Placement::Center, Qt::green};
        const Arrangement present = presentArrangement({}, setting, {left, right});
        QCOMPARE(present.screens.size(), 2);
        QCOMPARE(present.find(left.name)->shown, shown);
        QCOMPARE(present.find(right.name)->shown, shown);
        QCOMPARE(present.find(right.name)->screen, right);
    }

    void aSpanningPictureIsSharedOut()
    {
        const Setting setting{u"/a.png"_s, Placement::Cover, true};
        const Arrangement present = presentArrangement({}, setting, {left, right});
        QCOMPARE(present.find(left.name)->shown.area, QRectF(0, 0, 3, 2));
        QCOMPARE(present.find(right.name)->shown.area, QRectF(-0.5, 0, 1.5, 1));
    }

    void whatIsRememberedCounts()
    {
        const Arrangement before = remembered();
        const Setting setting{before.file, Placement::Cover, true};
        QCOMPARE(presentArrangement(before, setting, {left, right}), before);
    }

    void aKnownScreenKeepsItsPictureWhereverItIsNow()
    {
        const Arrangement before = remembered();
        const Screen moved{right.name, {-640, 0, 640, 480}};
        const Arrangement present = presentArrangement(before, {before.file}, {left, moved});
        QCOMPARE(present.find(right.name)->screen, moved);
        QCOMPARE(present.find(right.name)->shown, before.find(right.name)->shown);
    }

    void aNewScreenBeginsWithTheMainPicture()
    {
        const Arrangement before = remembered();
        const Screen third{u"DP-3"_s, {2400, 0, 800, 600}};
        const Arrangement present = presentArrangement(before, {before.file}, {left, right, third});
        QCOMPARE(present.find(third.name)->shown, before.find(left.name)->shown);
    }

    void aDetachedScreenIsRememberedUntilItComesBack()
    {
        const Arrangement before = remembered();
        const Arrangement without = presentArrangement(before, {before.file}, {left});
        QCOMPARE(without.attachedScreens(), QList<Screen>{left});
        QVERIFY(!without.find(right.name)->isAttached());
        const Arrangement again = presentArrangement(without, {before.file}, {left, right});
        QCOMPARE(again.screens, before.screens);
    }

    void aDetachedScreenIsForgottenWithItsPicture()
    {
        const Arrangement before = remembered();
        QVERIFY(QFile::remove(before.find(right.name)->shown.file));
        const Arrangement without = presentArrangement(before, {before.file}, {left});
        QCOMPARE(without.find(right.name), nullptr);
    }

    void itSurvivesBeingWritten()
    {
        const Arrangement before = remembered();
        QCOMPARE(arrangementFromJson(toJson(before)), before);
    }

    void whatIsDamagedIsEmpty()
    {
        QCOMPARE(arrangementFromJson({}), Arrangement());
        QCOMPARE(arrangementFromJson({{u"file"_s, 5}, {u"screens"_s, u"none"_s}}), Arrangement());
    }
};

QTEST_GUILESS_MAIN(ArrangementTest)

#include "arrangementtest.moc"
