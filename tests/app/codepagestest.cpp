#include "app/codepages.h"

#include <QFile>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

/// Kibibytes of files, which are nearly all code, that this process has in memory; 0 if not told.
qint64 residentFiles()
{
    QFile status(u"/proc/self/status"_s);
    if (!status.open(QIODevice::ReadOnly)) {
        return 0;
    }
    const QList<QByteArray> lines = status.readAll().split('\n');
    for (const QByteArray &line : lines) {
        if (line.startsWith("RssFile:")) {
            return line.simplified().split(' ').value(1).toLongLong();
        }
    }
    return 0;
}

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
