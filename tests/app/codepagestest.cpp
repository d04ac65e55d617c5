#include "app/codepages.h"

#include "residentfiles.h"

#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

QImage drawnText()
{
    QImage image(200, 40, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.drawText(10, 30, u"Wallpaper set!"_s);
    return image;
}

} // namespace

class CodePagesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void mostOfThemGo()
    {
        const QImage before = drawnText();
        const qint64 most = residentFiles();
        QVERIFY(most > 0);

        app::releaseCodePages();
        const qint64 left = residentFiles();
        QVERIFY2(left < most / 2, qPrintable(u"%1 of %2 KiB are left"_s.arg(left).arg(most)));

        // And what is needed comes back.
        QCOMPARE(drawnText(), before);
        QVERIFY(residentFiles() > left);
    }
};

QTEST_MAIN(CodePagesTest)
#include "codepagestest.moc"
