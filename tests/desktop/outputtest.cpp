#include "desktop/output.h"

#include <QTest>

using namespace Qt::StringLiterals;
using desktop::outputOf;
using desktop::Screen;

class OutputTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aScreenIsFoundByNameElseByItsPlace_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QPoint>("place");
        QTest::addColumn<QString>("output");
        QTest::newRow("its name") << u"DP-1"_s << QPoint(0, 0) << u"DP-1"_s;
        QTest::newRow("the name counts more than the place")
            << u"DP-2"_s << QPoint(0, 0) << u"DP-2"_s;
        QTest::newRow("its place") << u"XWAYLAND1"_s << QPoint(800, 0) << u"DP-2"_s;
        QTest::newRow("neither") << u"XWAYLAND2"_s << QPoint(0, 600) << u"none"_s;
    }
    void aScreenIsFoundByNameElseByItsPlace()
    {
        QFETCH(QString, name);
        QFETCH(QPoint, place);
        const std::vector<Screen> outputs{
            {u"DP-1"_s, {0, 0, 800, 600}}, {u"DP-2"_s, {800, 0, 640, 480}}};
        const auto output = outputOf(Screen{name, QRect(place, QSize(1, 1))}, outputs);
        QTEST(output ? output->name : u"none"_s, "output");
    }
};

QTEST_GUILESS_MAIN(OutputTest)

#include "outputtest.moc"
