#include "app/singleinstance.h"

#include "muteprogram.h"

#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using app::ActivationToken;
using app::SingleInstance;

/// One program per session, and what it may be asked over the bus.
class SingleInstanceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whoeverHasTheNameAndDoesNotAnswerIsUnreachable();
    void actionsAreThoseOfTheMenu_data();
    void actionsAreThoseOfTheMenu();
};

void SingleInstanceTest::whoeverHasTheNameAndDoesNotAnswerIsUnreachable()
{
    SingleInstance instance;
    const MuteProgram other;
    QCOMPARE(instance.claim(ActivationToken::ofThisStart()), SingleInstance::Role::Unreachable);
}

void SingleInstanceTest::actionsAreThoseOfTheMenu_data()
{
    QTest::addColumn<QString>("action");
    QTest::addColumn<QList<int>>("heard");
    QTest::newRow("generate") << u"generate"_s << QList{1, 0, 0};
    QTest::newRow("settings") << u"settings"_s << QList{0, 1, 0};
    QTest::newRow("quit") << u"quit"_s << QList{0, 0, 1};
    QTest::newRow("one that it does not have") << u"print"_s << QList{0, 0, 0};
}

void SingleInstanceTest::actionsAreThoseOfTheMenu()
{
    QFETCH(const QString, action);
    SingleInstance instance;
    const QSignalSpy generate(&instance, &SingleInstance::generateRequested);
    const QSignalSpy settings(&instance, &SingleInstance::settingsRequested);
    const QSignalSpy quit(&instance, &SingleInstance::quitRequested);
    instance.ActivateAction(action, {}, {});
    QTEST((QList{int(generate.count()), int(settings.count()), int(quit.count())}), "heard");
}

QTEST_GUILESS_MAIN(SingleInstanceTest)
#include "singleinstancetest.moc"
