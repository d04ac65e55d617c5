#include "ui/advancedsettings.h"

#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;
using ui::AdvancedSettings;
using ui::ModelChoice;

namespace {

const auto modelKey = u"selectedModel_painter"_s;

/// A service, a settings file, and the choice among the service's models.
class Choosing
{
    QTemporaryDir m_folder; // Before what lies in it.

public:
    explicit Choosing(const QList<providers::ModelOption> &models)
        : choice(core::Settings(store), {u"painter"_s, u"Painter"_s, {}, models})
    {
    }

    QSettings store{m_folder.filePath(u"settings.conf"_s), QSettings::IniFormat};
    ModelChoice choice;
    QSignalSpy changed{&choice, &ModelChoice::modelChanged};
};

QList<providers::ModelOption> twoModels()
{
    return {{u"quick"_s, u"Quick"_s}, {u"fine"_s, u"Fine"_s}};
}

} // namespace

/// The choice of models and the override, and what of it is stored.
class AdvancedSettingsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aStoredModelIsChosen();
    void loadingAgainKeepsTheChoice();
    void aPlaceThatIsNoneChoosesNothing_data();
    void aPlaceThatIsNoneChoosesNothing();
    void withoutModelsThereIsNoChoice();
};

void AdvancedSettingsTest::aStoredModelIsChosen()
{
    Choosing choosing(twoModels());
    choosing.store.setValue(modelKey, u"fine"_s);
    QCOMPARE(choosing.choice.index(), -1);
    choosing.choice.load();
    QCOMPARE(choosing.choice.model(), u"fine"_s);
    QCOMPARE(choosing.choice.index(), 1);
    QCOMPARE(choosing.store.value(modelKey).toString(), u"fine"_s);
}

void AdvancedSettingsTest::loadingAgainKeepsTheChoice()
{
    Choosing choosing(twoModels());
    choosing.choice.load();
    choosing.choice.setIndex(1);
    QCOMPARE(choosing.changed.count(), 2);
    choosing.choice.load();
    choosing.choice.setIndex(1);
    QCOMPARE(choosing.choice.model(), u"fine"_s);
    QCOMPARE(choosing.changed.count(), 2);
}

void AdvancedSettingsTest::aPlaceThatIsNoneChoosesNothing_data()
{
    QTest::addColumn<int>("index");
    QTest::newRow("none") << -1;
    QTest::newRow("beyond the last") << 2;
}

void AdvancedSettingsTest::aPlaceThatIsNoneChoosesNothing()
{
    QFETCH(const int, index);
    Choosing choosing(twoModels());
    choosing.choice.load();
    choosing.choice.setIndex(index);
    QCOMPARE(choosing.choice.index(), 0);
    QCOMPARE(choosing.changed.count(), 1);
}

void AdvancedSettingsTest::withoutModelsThereIsNoChoice()
{
    Choosing choosing({});
    choosing.choice.load();
    QCOMPARE(choosing.choice.index(), -1);
    QVERIFY(choosing.choice.labels().isEmpty());
    QVERIFY(!choosing.store.contains(modelKey));
}

QTEST_GUILESS_MAIN(AdvancedSettingsTest)
#include "advancedsettingstest.moc"
