#include "desktop/screenlayout.h"

#include "fakemutter.h"
#include "twoscreens.h"

#include <QCoroTask>
#include <QGuiApplication>
#include <QTest>

using namespace Qt::StringLiterals;
using desktop::Screen;

namespace {

const QList<Screen> inDevicePixels{{u"left"_s, {0, 0, 160, 120}}, {u"right"_s, {160, 0, 200, 120}}};
const QList<Screen> asQtTellsThem{{u"left"_s, {0, 0, 80, 60}}, {u"right"_s, {80, 0, 100, 60}}};

QList<Screen> layout()
{
    return QCoro::waitFor(
        desktop::screenLayout(QDBusConnection::sessionBus(), QDeadlineTimer(3000)));
}

} // namespace

/// On two screens of twice the usual density.
class ScreenLayoutTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whereNobodyElseTellsScreensCountTheirPixels() { QCOMPARE(layout(), inDevicePixels); }

    void gnomeTellsHowItCounts_data()
    {
        QTest::addColumn<QVariantMap>("properties");
        QTest::addColumn<QList<Screen>>("screens");
        QTest::newRow("by how large they look")
            << QVariantMap{{u"layout-mode"_s, uint(1)}} << inDevicePixels;
        QTest::newRow("by their pixels")
            << QVariantMap{{u"layout-mode"_s, uint(2)}} << asQtTellsThem;
        QTest::newRow("it does not tell") << QVariantMap() << inDevicePixels;
    }
    void gnomeTellsHowItCounts()
    {
        QFETCH(QVariantMap, properties);
        FakeMutter fake(u"left"_s);
        fake.properties = properties;
        QTEST(layout(), "screens");
    }
};

int main(int argc, char **argv)
{
    const TwoScreens screens(2);
    QGuiApplication application(argc, argv);
    ScreenLayoutTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "screenlayouttest.moc"
