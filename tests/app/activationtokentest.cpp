#include "app/activationtoken.h"

#include <QTest>

using namespace Qt::StringLiterals;
using app::ActivationToken;

class ActivationTokenTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { ActivationToken::drop(); }

    void whatAStartGotIsHandedOn()
    {
        qputenv("XDG_ACTIVATION_TOKEN", "token");
        qputenv("DESKTOP_STARTUP_ID", "id_TIME7");
        const QVariantMap expected{
            {u"activation-token"_s, u"token"_s}, {u"desktop-startup-id"_s, u"id_TIME7"_s}};
        QCOMPARE(ActivationToken::ofThisStart().platformData(), expected);
    }

    void aStartThatGotNothingHandsNothingOn()
    {
        QCOMPARE(ActivationToken::ofThisStart().platformData(), QVariantMap());
    }

    void theNextWindowFindsWhatACallBrought_data()
    {
        QTest::addColumn<QVariantMap>("platformData");
        QTest::addColumn<QByteArray>("token");
        QTest::addColumn<QByteArray>("startupId");
        const QVariantMap token{{u"activation-token"_s, u"token"_s}};
        const QVariantMap id{{u"desktop-startup-id"_s, u"id_TIME7"_s}};
        QVariantMap both(token);
        both.insert(id);
        QTest::newRow("both") << both << "token"_ba
                              << "id_TIME7"_ba;
        QTest::newRow("by its new name alone") << token << "token"_ba
                                               << ""_ba;
        QTest::newRow("by its old name alone") << id << "id_TIME7"_ba
                                               << "id_TIME7"_ba;
        QTest::newRow("nothing") << QVariantMap() << ""_ba
                                 << ""_ba;
    }
    void theNextWindowFindsWhatACallBrought()
    {
        QFETCH(QVariantMap, platformData);
        qputenv("XDG_ACTIVATION_TOKEN", "of an earlier call");
        ActivationToken::ofCall(platformData).adopt();
        QTEST(qgetenv("XDG_ACTIVATION_TOKEN"), "token");
        QTEST(qgetenv("DESKTOP_STARTUP_ID"), "startupId");
    }

    void afterThatItIsGone()
    {
        ActivationToken::ofCall({{u"desktop-startup-id"_s, u"id"_s}}).adopt();
        ActivationToken::drop();
        QVERIFY(!qEnvironmentVariableIsSet("XDG_ACTIVATION_TOKEN"));
        QVERIFY(!qEnvironmentVariableIsSet("DESKTOP_STARTUP_ID"));
    }
};

QTEST_GUILESS_MAIN(ActivationTokenTest)

#include "activationtokentest.moc"
