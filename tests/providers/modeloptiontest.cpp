#include "providers/modeloption.h"

#include <QHash>
#include <QTest>

using namespace Qt::StringLiterals;
using providers::ModelOption;

class ModelOptionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void equalOnlyIfBothFieldsAre_data()
    {
        QTest::addColumn<ModelOption>("other");
        QTest::addColumn<bool>("equal");
        QTest::newRow("same id and label") << ModelOption{u"a"_s, u"A"_s} << true;
        QTest::newRow("same id, other label") << ModelOption{u"a"_s, u"B"_s} << false;
        QTest::newRow("other id, same label") << ModelOption{u"b"_s, u"A"_s} << false;
        QTest::newRow("other case") << ModelOption{u"A"_s, u"A"_s} << false;
        QTest::newRow("fields exchanged") << ModelOption{u"A"_s, u"a"_s} << false;
    }

    void equalOnlyIfBothFieldsAre()
    {
        QFETCH(ModelOption, other);
        QFETCH(bool, equal);
        const ModelOption option{u"a"_s, u"A"_s};
        QCOMPARE(option == other, equal);
        QCOMPARE(qHash(option) == qHash(other), equal);
    }

    void isAMemberOfASet()
    {
        const QSet<ModelOption> set{{u"a"_s, u"A"_s}, {u"a"_s, u"B"_s}, {u"a"_s, u"A"_s}};
        QCOMPARE(set.size(), 2);
        QVERIFY(set.contains({u"a"_s, u"B"_s}));
        QVERIFY(!set.contains({u"b"_s, u"B"_s}));
    }
};

QTEST_GUILESS_MAIN(ModelOptionTest)
#include "modeloptiontest.moc"
