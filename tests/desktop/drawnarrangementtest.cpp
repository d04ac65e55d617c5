#include "desktop/drawnarrangement.h"

#include "onscreen.h"

#include <QTest>

using namespace Qt::StringLiterals;
using desktop::Arrangement;
using desktop::ComposedPictures;
using desktop::drawn;
using desktop::Placement;
using desktop::Screen;
using desktop::ShowingScreen;
using desktop::Shown;

namespace {

const Screen leftScreen{u"left"_s, {0, 0, 8, 6}};
const Screen rightScreen{u"right"_s, {8, 0, 10, 6}};
const Screen detachedScreen{u"detached"_s, {}};

Arrangement arrangement(const QList<ShowingScreen> &screens)
{
    return {{}, false, u"left"_s, screens};
}

} // namespace

class DrawnArrangementTest : public QObject
{
    Q_OBJECT

private:
    const PictureFolder m_folder{{32, 24}};
    const ComposedPictures m_pictures{u"test"_s};
    QString m_red;
    QString m_green;
    QString m_yellow;

    /// What the file made for @p wanted shows.
    QImage shown(const Arrangement &wanted, const Arrangement &present = {})
    {
        const auto done = drawn(wanted, present, {}, m_pictures);
        return done ? QImage(done->file).convertToFormat(QImage::Format_RGB32) : QImage();
    }

private Q_SLOTS:
    void init()
    {
        m_red = m_folder.picture(u"red.png"_s, Qt::red);
        m_green = m_folder.picture(u"green.png"_s, Qt::green);
        m_yellow = m_folder.picture(u"yellow.png"_s, Qt::yellow);
    }
    void cleanup()
    {
        for (const QString &file : m_pictures.files()) {
            QFile::remove(file);
        }
    }

    void whatCoversEachScreenIsShownAsItIs()
    {
        const auto done = drawn(arrangement({{leftScreen, {m_red}}, {rightScreen, {m_red}},
                                    {detachedScreen, {m_green}}}),
            {}, {}, m_pictures);
        QVERIFY(done);
        QCOMPARE(done->file, m_red);
        QVERIFY(!done->isSpanning);
        QCOMPARE(m_pictures.files(), QStringList());
    }

    void whatScreensShowInDifferentWaysIsComposed_data()
    {
        QTest::addColumn<Shown>("left");
        QTest::addColumn<Shown>("right");
        const QRectF half(0, 0, 0.5, 1);
        QTest::newRow("the left one fitted")
            << Shown{u"red"_s, {0, 0, 1, 1}, Placement::Fit} << Shown{u"red"_s};
        QTest::newRow("the right one fitted")
            << Shown{u"red"_s} << Shown{u"red"_s, {0, 0, 1, 1}, Placement::Fit};
        QTest::newRow("elsewhere on the left") << Shown{u"red"_s, half} << Shown{u"red"_s};
        QTest::newRow("elsewhere on the right") << Shown{u"red"_s} << Shown{u"red"_s, half};
        QTest::newRow("two pictures") << Shown{u"red"_s} << Shown{u"green"_s};
    }
    void whatScreensShowInDifferentWaysIsComposed()
    {
        QFETCH(Shown, left);
        QFETCH(Shown, right);
        for (Shown *each : {&left, &right}) {
            each->file = m_folder.filePath(each->file + u".png"_s);
        }
        const auto done
            = drawn(arrangement({{leftScreen, left}, {rightScreen, right}}), {}, {}, m_pictures);
        QVERIFY(done);
        QVERIFY(done->isSpanning);
        QCOMPARE(m_pictures.files(), QStringList(done->file));
        QCOMPARE(QImage(done->file).size(), QSize(18, 6));
    }

    void whereNoScreenIsThereIsNothingToDraw()
    {
        QVERIFY(!drawn(arrangement({{detachedScreen, {m_red}}}), {}, {}, m_pictures));
        QVERIFY(!drawn(arrangement({}), {}, {}, m_pictures));
        QCOMPARE(m_pictures.files(), QStringList());
    }

    void aDetachedScreenIsNotDrawn()
    {
        const QImage image = shown(arrangement(
            {{detachedScreen, {m_yellow}}, {leftScreen, {m_red}}, {rightScreen, {m_green}}}));
        QCOMPARE(image.size(), QSize(18, 6));
        QCOMPARE(image.copy(leftScreen.geometry), oneColour({8, 6}, Qt::red));
        QCOMPARE(image.copy(rightScreen.geometry), oneColour({10, 6}, Qt::green));
    }

    void aLostPictureIsTakenFromWhatIsSeenOfIt()
    {
        const auto present = drawn(
            arrangement({{leftScreen, {m_red}}, {rightScreen, {m_green}}}), {}, {}, m_pictures);
        QVERIFY(present);
        QVERIFY(QFile::remove(m_green));
        const Screen wider{u"right"_s, {8, 0, 20, 6}};
        const QImage image
            = shown(arrangement({{leftScreen, {m_red}}, {wider, {m_green}}}), *present);
        QCOMPARE(image.copy(leftScreen.geometry), oneColour({8, 6}, Qt::red));
        // Where the screens meet, making it wider mixes the colours of both.
        QCOMPARE(image.copy(9, 0, 19, 6), oneColour({19, 6}, Qt::green));
    }

    void aLostPictureOfAScreenThatComesBackIsBlack()
    {
        const auto present = drawn(arrangement({{leftScreen, {m_red, {0, 0, 1, 1}, Placement::Fit}},
                                       {{u"right"_s, {}}, {m_green}}}),
            {}, {}, m_pictures);
        QVERIFY(present && present->isSpanning);
        QVERIFY(QFile::remove(m_green));
        const QImage image
            = shown(arrangement({{leftScreen, {m_red}}, {rightScreen, {m_green}}}), *present);
        QCOMPARE(image.copy(leftScreen.geometry), oneColour({8, 6}, Qt::red));
        QCOMPARE(image.copy(rightScreen.geometry), oneColour({10, 6}, Qt::black));
    }

    void theMainScreenIsSeenWhereAnotherOneMirrorsIt()
    {
        const Screen mirror{u"mirror"_s, leftScreen.geometry};
        Arrangement wanted
            = arrangement({{leftScreen, {m_red}}, {mirror, {m_green}}, {rightScreen, {m_green}}});
        const auto present = drawn(wanted, {}, {}, m_pictures);
        QVERIFY(present);
        QCOMPARE(QImage(present->file).pixelColor(4, 3), QColor(Qt::red));
        wanted.screens[0].shown.file = m_yellow;
        const QImage image = shown(wanted, *present);
        QCOMPARE(image.copy(leftScreen.geometry), oneColour({8, 6}, Qt::yellow));
        QCOMPARE(image.copy(rightScreen.geometry), oneColour({10, 6}, Qt::green));
    }

    void aScreenThatMovesChangesTheWholePicture()
    {
        const auto present = drawn(
            arrangement({{leftScreen, {m_red}}, {rightScreen, {m_green}}}), {}, {}, m_pictures);
        QVERIFY(present);
        const Screen below{u"right"_s, {0, 6, 10, 6}};
        const QImage image
            = shown(arrangement({{leftScreen, {m_red}}, {below, {m_green}}}), *present);
        QCOMPARE(image.size(), QSize(10, 12));
        QCOMPARE(image.copy(leftScreen.geometry), oneColour({8, 6}, Qt::red));
        QCOMPARE(image.copy(below.geometry), oneColour({10, 6}, Qt::green));
        QCOMPARE(image.pixelColor(9, 0), QColor(Qt::black));
    }
};

QTEST_GUILESS_MAIN(DrawnArrangementTest)

#include "drawnarrangementtest.moc"
