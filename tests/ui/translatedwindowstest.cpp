#include "layoutfaults.h"
#include "providers/service.h"
#include "scenes.h"

#include <QAccessible>
#include <QDir>
#include <QRegularExpression>
#include <QTest>
#include <QTranslator>

using namespace Qt::StringLiterals;
using namespace ui::fakes;

namespace {

QStringList namesOfServices()
{
    const providers::ServiceTable table = providers::services();
    QStringList names;
    for (const providers::Service &service : {table.gemini, table.grok, table.openai}) {
        names << service.name;
        for (const providers::ModelOption &model : service.models) {
            names << model.label;
        }
    }
    return names;
}

/// What no catalogue translates: names of services and models, the prompt, the status, file names,
/// moments, and what stands for a secret.
bool isData(const QString &text)
{
    static const QRegularExpression data(
        u"^(Plenaura|A quiet mountain lake.*|Wallpaper set!|Failed: .*|Network error: .*|"
        u"wallpaper_.*\\.png|[A-Z][a-z]{2} \\d+, \\d\\d:\\d\\d|•+)$"_s);
    return data.match(text).hasMatch() || namesOfServices().contains(text);
}

bool isTranslated(const QString &text)
{
    return text.startsWith("[!! "_L1) && text.endsWith(" !!]"_L1);
}

bool mayBeShown(const QString &text)
{
    return text.isEmpty() || isTranslated(text) || isData(text);
}

QStringList untranslated(QQuickWindow *window)
{
    QStringList found;
    const auto items = visibleItems(window);
    for (QQuickItem *item : items) {
        const QString text = item->property("text").toString();
        if (item->inherits("QQuickText") && !mayBeShown(text)) {
            found << text;
        }
        const auto *accessible = QAccessible::queryAccessibleInterface(item);
        const QString name = accessible ? accessible->text(QAccessible::Name) : QString();
        if (!mayBeShown(name)) {
            found << name;
        }
    }
    return mayBeShown(window->title()) ? found : found << window->title();
}

/// For eyes; nothing is written unless a folder is named.
void keepPicture(const QImage &picture, const QString &name)
{
    const QString folder = qEnvironmentVariable("PLENAURA_PICTURES");
    if (!folder.isEmpty()) {
        picture.save(QDir(folder).filePath(name + u".png"_s));
    }
}

} // namespace

/// The windows in English, and in a language of long words.
class TranslatedWindowsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everythingHasItsPlace_data();
    void everythingHasItsPlace();
};

void TranslatedWindowsTest::everythingHasItsPlace_data()
{
    QTest::addColumn<bool>("translated");
    QTest::addColumn<Scene>("scene");
    const auto all = scenes();
    for (const Scene &scene : all) {
        QTest::addRow("%s", qPrintable(scene.name + u", translated"_s)) << true << scene;
        QTest::addRow("%s", qPrintable(scene.name + u", English"_s)) << false << scene;
    }
}

void TranslatedWindowsTest::everythingHasItsPlace()
{
    QFETCH(bool, translated);
    QFETCH(Scene, scene);
    QTranslator translator;
    QVERIFY(translator.load(QStringLiteral(PSEUDO_CATALOGUE)));
    if (translated) {
        QCoreApplication::installTranslator(&translator);
    }
    Stage stage;
    QQuickWindow *window = scene.open(stage);
    QVERIFY(window);
    const auto picture = pictureAtRest(window);
    QVERIFY(picture);
    keepPicture(*picture, scene.name + (translated ? u"-translated"_s : u"-english"_s));
    QStringList faults;
    const auto layer = topLayer(window);
    for (QQuickItem *item : layer) {
        faults << layoutFaults(item);
    }
    if (translated) {
        faults << untranslated(window);
    }
    QVERIFY2(faults.isEmpty(), qPrintable(faults.join(u'\n')));
}

QTEST_MAIN(TranslatedWindowsTest)
#include "translatedwindowstest.moc"
