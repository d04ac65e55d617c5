#include "stage.h"

#include <QFile>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace ui::fakes;
using ui::Picture;

namespace {

/// Pictures that the scene need not know, on a window of their own.
class Wall
{
public:
    Wall()
    {
        window.resize(300, 200);
        window.setColor(Qt::black);
        window.show();
    }

    std::unique_ptr<Picture> hung(const QUrl &file)
    {
        auto picture = std::make_unique<Picture>(window.contentItem());
        picture->setSize({100, 100});
        picture->setSource(file);
        return picture;
    }

    /// Waits until a picture that is hung now is decoded, before which comes what was asked for
    /// earlier.
    bool isSettled()
    {
        const auto picture = hung(other);
        picture->setBox({50, 50});
        return QTest::qWaitFor([&] { return picture->status() == Picture::Ready; });
    }

    Stage stage; // What draws is chosen before the window is made.
    QUrl source = stage.putPicture(u"one.png"_s, {640, 320}, Qt::red);
    QUrl other = stage.putPicture(u"other.png"_s);
    QQuickWindow window;
};

} // namespace

/// When a picture is decoded, and how large.
class PictureTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void withoutABoxItWaits();
    void withoutASourceThereIsNothingToRecheck();
    void framingDecidesTheSizeAndMayChange();
    void polishingDecodesOnlyWhatIsDue();
    void withoutASizeItIsNotSeen();
};

void PictureTest::withoutABoxItWaits()
{
    Wall wall;
    const auto picture = wall.hung(wall.source);
    QVERIFY(wall.isSettled());
    QVERIFY(wall.isSettled());
    QCOMPARE(picture->status(), Picture::Loading);
    picture->setBox({100, 100});
    QTRY_COMPARE(picture->status(), Picture::Ready);
}

void PictureTest::withoutASourceThereIsNothingToRecheck()
{
    Wall wall;
    const auto picture = wall.hung(wall.source);
    picture->setBox({100, 100});
    QTRY_COMPARE(picture->status(), Picture::Ready);
    picture->setSource({});
    picture->recheck();
    QVERIFY(wall.isSettled());
    QCOMPARE(picture->status(), Picture::Null);
}

void PictureTest::framingDecidesTheSizeAndMayChange()
{
    Wall wall;
    const auto picture = wall.hung(wall.source);
    const QSignalSpy fitChanged(picture.get(), &Picture::fitChanged);
    picture->setBox({80, 80});
    QTRY_COMPARE(picture->decodedSize(), QSize(160, 80));
    picture->setFit(true);
    QTRY_COMPARE(picture->decodedSize(), QSize(80, 40));
    picture->setFit(true);
    QCOMPARE(fitChanged.count(), 1);
    picture->setFit(false);
    QTRY_COMPARE(picture->decodedSize(), QSize(160, 80));
    QCOMPARE(fitChanged.count(), 2);
}

void PictureTest::polishingDecodesOnlyWhatIsDue()
{
    Wall wall;
    const auto picture = wall.hung(wall.source);
    picture->setBox({100, 100});
    QTRY_COMPARE(picture->status(), Picture::Ready);
    QVERIFY(QFile::remove(wall.source.toLocalFile()));
    picture->polish();
    QVERIFY(wall.isSettled());
    QVERIFY(wall.isSettled());
    QCOMPARE(picture->status(), Picture::Ready);
}

void PictureTest::withoutASizeItIsNotSeen()
{
    Wall wall;
    const auto picture = wall.hung(wall.source);
    picture->setBox({100, 100});
    QTRY_COMPARE(colorAt(&wall.window, {50, 50}), QColor(Qt::red));
    picture->setSize({});
    QTRY_COMPARE(colorAt(&wall.window, {50, 50}), QColor(Qt::black));
    QCOMPARE(colorAt(&wall.window, {0, 0}), QColor(Qt::black));
    picture->setSize({100, 100});
    QTRY_COMPARE(colorAt(&wall.window, {50, 50}), QColor(Qt::red));
}

QTEST_MAIN(PictureTest)
#include "picturetest.moc"
