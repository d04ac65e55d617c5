#include "ui/gallerymodel.h"

#include "managerfixture.h"
#include "storage/imagestore.h"

#include <QAbstractItemModelTester>
#include <QFile>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using core::WallpaperManager;
using core::fakes::ManagerFixture;
using storage::ImageStore;
using ui::GalleryModel;

namespace {

/// A model over some pictures, and what it tells of its changes.
class Rows
{
public:
    explicit Rows(int pictures)
    {
        for (int number = 0; number < pictures; ++number) {
            fixture.putImage(u"%1.png"_s.arg(number));
        }
        manager = &fixture.start();
        model.setManager(manager);
        inserted.clear();
    }

    QList<QUrl> urls() const
    {
        QList<QUrl> urls;
        for (int row = 0; row < model.rowCount(); ++row) {
            urls << model.index(row).data(GalleryModel::UrlRole).toUrl();
        }
        return urls;
    }

    ManagerFixture fixture;
    WallpaperManager *manager = nullptr;
    GalleryModel model;
    QAbstractItemModelTester tester{&model, QAbstractItemModelTester::FailureReportingMode::QtTest};
    QSignalSpy inserted{&model, &GalleryModel::rowsInserted};
    QSignalSpy removed{&model, &GalleryModel::rowsRemoved};
    QSignalSpy moved{&model, &GalleryModel::rowsMoved};
    QSignalSpy reset{&model, &GalleryModel::modelReset};
};

/// Puts a new picture in the place of an old one, until it is newer than another one.
bool madeAnew(ManagerFixture &fixture, const QUrl &url, const QUrl &newest)
{
    QFile::remove(url.toLocalFile());
    fixture.putImage(url.fileName());
    return ImageStore::creationDate(url) > ImageStore::creationDate(newest);
}

} // namespace

/// The gallery as rows, and how they change.
class GalleryModelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void rowsAreTheGallery();
    void beyondItsRowsThereIsNothing();
    void neighboursThatGoAreOneRemoval();
    void picturesThatAreNoNeighboursGoOneByOne();
    void aPictureMadeAnewMovesToTheTop();
    void theSameManagerAgainChangesNothing();
    void anotherManagerReplacesTheRows();
};

void GalleryModelTest::rowsAreTheGallery()
{
    const Rows rows(3);
    QCOMPARE(rows.model.count(), 3);
    QCOMPARE(rows.urls(), rows.manager->history());
    const QModelIndex first = rows.model.index(0);
    QCOMPARE(first.data(GalleryModel::FileNameRole).toString(), rows.urls().first().fileName());
    QVERIFY(!first.data(Qt::DisplayRole).isValid());
}

void GalleryModelTest::beyondItsRowsThereIsNothing()
{
    const Rows rows(2);
    QCOMPARE(rows.model.rowCount(rows.model.index(0)), 0);
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"is not valid"_s));
    QVERIFY(!rows.model.data({}, GalleryModel::UrlRole).isValid());
}

void GalleryModelTest::neighboursThatGoAreOneRemoval()
{
    Rows rows(5);
    const QList<QUrl> before = rows.urls();
    QVERIFY(QFile::remove(before[1].toLocalFile()) && QFile::remove(before[2].toLocalFile()));
    rows.manager->reloadHistory();
    QCOMPARE(rows.urls(), (QList<QUrl>{before[0], before[3], before[4]}));
    QCOMPARE(rows.removed.count(), 1);
    QCOMPARE(rows.inserted.count() + rows.moved.count() + rows.reset.count(), 0);
}

void GalleryModelTest::picturesThatAreNoNeighboursGoOneByOne()
{
    Rows rows(5);
    const QList<QUrl> before = rows.urls();
    QVERIFY(QFile::remove(before[0].toLocalFile()) && QFile::remove(before[2].toLocalFile()));
    rows.manager->reloadHistory();
    QCOMPARE(rows.urls(), (QList<QUrl>{before[1], before[3], before[4]}));
    QCOMPARE(rows.removed.count(), 2);
    QCOMPARE(rows.inserted.count() + rows.moved.count() + rows.reset.count(), 0);
}

void GalleryModelTest::aPictureMadeAnewMovesToTheTop()
{
    Rows rows(3);
    const QList<QUrl> before = rows.urls();
    QTRY_VERIFY(madeAnew(rows.fixture, before[2], before[0]));
    rows.manager->reloadHistory();
    QCOMPARE(rows.urls(), (QList<QUrl>{before[2], before[0], before[1]}));
    QCOMPARE(rows.moved.count(), 1);
    QCOMPARE(rows.inserted.count() + rows.removed.count() + rows.reset.count(), 0);
}

void GalleryModelTest::theSameManagerAgainChangesNothing()
{
    Rows rows(2);
    const QSignalSpy changed(&rows.model, &GalleryModel::managerChanged);
    rows.model.setManager(rows.manager);
    QCOMPARE(changed.count(), 0);
}

void GalleryModelTest::anotherManagerReplacesTheRows()
{
    Rows rows(2);
    ManagerFixture other;
    const QUrl picture = other.putImage(u"other.png"_s);
    rows.model.setManager(&other.start());
    QCOMPARE(rows.urls(), QList<QUrl>{picture});
    QVERIFY2(!disconnect(rows.manager, nullptr, &rows.model, nullptr), "The former one is heard.");
}

QTEST_MAIN(GalleryModelTest)
#include "gallerymodeltest.moc"
