#include "ui/intervalchoice.h"

#include "managerfixture.h"

#include <QSignalSpy>
#include <QTest>

using core::fakes::ManagerFixture;
using ui::IntervalChoice;

/// The interval picker's options over the manager's interval.
class IntervalChoiceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void itIsTheManagersInterval();
    void theSameManagerAgainChangesNothing();
    void anotherManagerIsFollowedAlone();
};

void IntervalChoiceTest::itIsTheManagersInterval()
{
    ManagerFixture fixture;
    auto &manager = fixture.start();
    IntervalChoice choice;
    choice.setManager(&manager);
    QCOMPARE(choice.labels().size(), manager.intervalOptions().size());
    choice.setIndex(0);
    QCOMPARE(manager.intervalMinutes(), 5);
    manager.setIntervalMinutes(15);
    QCOMPARE(choice.index(), 1);
    manager.setIntervalMinutes(7);
    QCOMPARE(choice.index(), -1);
}

void IntervalChoiceTest::theSameManagerAgainChangesNothing()
{
    ManagerFixture fixture;
    auto &manager = fixture.start();
    IntervalChoice choice;
    choice.setManager(&manager);
    const QSignalSpy changed(&choice, &IntervalChoice::managerChanged);
    choice.setManager(&manager);
    QCOMPARE(changed.count(), 0);
}

void IntervalChoiceTest::anotherManagerIsFollowedAlone()
{
    ManagerFixture fixture;
    ManagerFixture other;
    IntervalChoice choice;
    auto &former = fixture.start();
    auto &followed = other.start();
    choice.setManager(&former);
    choice.setManager(&followed);
    const QSignalSpy changed(&choice, &IntervalChoice::indexChanged);
    former.setIntervalMinutes(5);
    QCOMPARE(changed.count(), 0);
    followed.setIntervalMinutes(60);
    QCOMPARE(choice.index(), 3);
    QCOMPARE(changed.count(), 1);
}

QTEST_GUILESS_MAIN(IntervalChoiceTest)
#include "intervalchoicetest.moc"
