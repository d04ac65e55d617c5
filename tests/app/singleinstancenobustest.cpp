#include "app/singleinstance.h"

#include <QCoreApplication>
#include <QTest>

using app::ActivationToken;
using app::SingleInstance;

class SingleInstanceNoBusTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere/bus"); }

    void withoutABusEveryProgramIsTheFirst()
    {
        SingleInstance one;
        SingleInstance other;
        QCOMPARE(one.claim(ActivationToken::ofThisStart()), SingleInstance::Role::First);
        QCOMPARE(other.claim(ActivationToken::ofThisStart()), SingleInstance::Role::First);
    }
};

QTEST_GUILESS_MAIN(SingleInstanceNoBusTest)

#include "singleinstancenobustest.moc"
