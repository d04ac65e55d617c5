#include "app/translations.h"

#include "core/texts.h"
#include "managerfixture.h"
#include "ui/menubarview.h"

#include <QAction>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <QTranslator>

using namespace Qt::StringLiterals;

namespace {

/// A folder with the pseudo language under the name of a real one.
class Catalogues
{
public:
    explicit Catalogues(const QString &language)
    {
        QFile::copy(
            QStringLiteral(PSEUDO_CATALOGUE), m_folder.filePath(u"plenaura_%1.qm"_s.arg(language)));
    }
    QString folder() const { return m_folder.path(); }

private:
    QTemporaryDir m_folder;
};

bool isTranslated(const QString &text)
{
    return text.startsWith("[!! "_L1) && text.endsWith(" !!]"_L1);
}

} // namespace

/// The program's texts in the person's language.
class TranslationsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup();
    void languageOfTheLocaleIsSpoken_data();
    void languageOfTheLocaleIsSpoken();
    void unknownLanguageLeavesEnglish();
    void englishCatalogueIsBuiltInAndChangesNothing();
    void everyTextOfTheMenuIsTranslated();
};

void TranslationsTest::cleanup()
{
    // What is deleted is not asked any more.
    qDeleteAll(qApp->findChildren<QTranslator *>());
}

void TranslationsTest::languageOfTheLocaleIsSpoken_data()
{
    QTest::addColumn<QString>("catalogue");
    QTest::addColumn<QLocale>("locale");
    QTest::newRow("language") << u"de"_s << QLocale(u"de_AT"_s);
    QTest::newRow("territory") << u"pt_BR"_s << QLocale(u"pt_BR"_s);
    QTest::newRow("script") << u"zh_TW"_s << QLocale(u"zh_Hant_TW"_s);
}

void TranslationsTest::languageOfTheLocaleIsSpoken()
{
    QFETCH(QString, catalogue);
    QFETCH(QLocale, locale);
    const Catalogues catalogues(catalogue);
    app::installTranslations(locale, catalogues.folder());
    QVERIFY(isTranslated(core::texts::formatInterval(60)));
    QVERIFY(isTranslated(core::texts::formatInterval(120)));
    QVERIFY(core::texts::formatInterval(120).contains(u"2 "_s));
}

void TranslationsTest::unknownLanguageLeavesEnglish()
{
    const Catalogues catalogues(u"de"_s);
    app::installTranslations(QLocale(u"fr_FR"_s), catalogues.folder());
    QCOMPARE(core::texts::formatInterval(60), u"1 hour"_s);
}

void TranslationsTest::englishCatalogueIsBuiltInAndChangesNothing()
{
    QVERIFY(QFile::exists(u":/plenaura/translations/plenaura_en.qm"_s));
    app::installTranslations(QLocale(u"en_GB"_s));
    QVERIFY(!qApp->findChildren<QTranslator *>().isEmpty());
    QCOMPARE(core::texts::formatInterval(5), u"5 min"_s);
    QCOMPARE(core::texts::formatInterval(60), u"1 hour"_s);
    QCOMPARE(core::texts::formatInterval(1440), u"24 hours"_s);
    QCOMPARE(core::texts::formatInterval(qint64(60) * 3'000'000'000), u"3000000000 hours"_s);
}

void TranslationsTest::everyTextOfTheMenuIsTranslated()
{
    const Catalogues catalogues(u"de"_s);
    app::installTranslations(QLocale(u"de_DE"_s), catalogues.folder());
    core::fakes::ManagerFixture fixture;
    auto &manager = fixture.start();
    const ui::MenuBarView menu(manager);
    const auto expectTranslated = [&menu] {
        const auto actions = menu.actions();
        for (const QAction *action : actions) {
            QVERIFY2(
                action->isSeparator() || isTranslated(action->text()), qPrintable(action->text()));
        }
    };
    QCOMPARE(menu.actions().size(), 9);
    expectTranslated(); // Idle.
    manager.setAutoEnabled(true);
    QVERIFY(menu.actions().first()->text().contains(u"09:56"_s)
        || menu.actions().first()->text().contains(u"9:56"_s));
    expectTranslated();
}

QTEST_MAIN(TranslationsTest)
#include "translationstest.moc"
