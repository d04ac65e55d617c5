#include "scenes.h"

#include "storage/keychain.h"
#include "ui/picture.h"

#include <QDir>
#include <QElapsedTimer>
#include <QPainter>
#include <QStyleHints>
#include <QTest>

using namespace Qt::StringLiterals;
using storage::Keychain;
using testlibs::HttpAnswer;

namespace ui::fakes {

namespace {

const auto key = u"canary-key"_s;
const auto prompt = u"A quiet mountain lake at dawn, mist over the water, soft pastel sky, 35 mm"_s;

/// A town by the water in a few flat colours and straight lines, so that pictures of it compress
/// well.
QImage town(int number)
{
    QImage image(480, 270, QImage::Format_RGB32);
    const int hue = (200 + 47 * number) % 360;
    image.fill(QColor::fromHsv(hue, 60, 240));
    QPainter painter(&image);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor::fromHsv((hue + 150) % 360, 50, 255));
    painter.drawRect(360 - 20 * number, 40, 44, 44);
    for (int house = 0; house < 8; ++house) {
        painter.setBrush(QColor::fromHsv(hue, 90 + 20 * (house % 4), 190 - 30 * (house % 4)));
        const int top = 110 + (house * 37 + number * 23) % 80;
        painter.drawRect(60 * house, top, 60, 270 - top);
    }
    painter.setBrush(QColor::fromHsv(hue, 110, 150));
    painter.drawRect(0, 215, 480, 55);
    return image;
}

void putTowns(Stage &stage)
{
    QDir().mkpath(stage.imageFolder());
    for (int number = 0; number < 7; ++number) {
        const QString name = u"/wallpaper_2026-03-14_09-20-0%1.png"_s.arg(number);
        if (!town(number).save(stage.imageFolder() + name)) {
            qFatal("cannot write %s", qPrintable(name));
        }
    }
    stage.manager().reloadHistory();
}

void saveKeys(const QStringList &services)
{
    for (const QString &service : services) {
        Keychain::save(key, service);
    }
}

QQuickWindow *openMainWithGallery(Stage &stage)
{
    saveKeys({u"gemini"_s, u"grok"_s, u"openai"_s});
    putTowns(stage);
    stage.manager().setPrompt(prompt);
    QQuickWindow *window = stage.openMain();
    return window && QTest::qWaitFor([&] { return !tiles(window).isEmpty(); }) ? window : nullptr;
}

QQuickWindow *withStatus(Stage &stage, const QString &status, bool error)
{
    QQuickWindow *window = openMainWithGallery(stage);
    stage.manager().setStatus(status, error);
    return window;
}

QQuickWindow *generating(Stage &stage)
{
    stage.server.enqueue(HttpAnswer{.held = true});
    QQuickWindow *window = openMainWithGallery(stage);
    stage.manager().generateAndSet();
    return window;
}

/// Everything that the sidebar can hold at once.
QQuickWindow *everyNote(Stage &stage)
{
    stage.settings.setValue(u"providerOverride"_s, u"openai"_s);
    stage.manager().setFourKEnabled(true);
    stage.manager().setNsfwEnabled(true);
    stage.manager().setAutoEnabled(true);
    return stage.openMain();
}

QQuickWindow *intervals(Stage &stage)
{
    stage.manager().setAutoEnabled(true);
    QQuickWindow *window = openMainWithGallery(stage);
    click(itemOfType(window->contentItem(), "Picker"));
    return window;
}

QQuickWindow *hoverTile(Stage &stage)
{
    QQuickWindow *window = openMainWithGallery(stage);
    hover(tiles(window).value(1));
    return window;
}

QQuickWindow *preview(Stage &stage)
{
    QQuickWindow *window = openMainWithGallery(stage);
    click(tiles(window).value(0));
    QTest::mouseMove(window, {1, 1});
    const bool shown = QTest::qWaitFor([&] {
        const QQuickItem *overlay = itemOfType(window->contentItem(), "PreviewOverlay");
        return overlay && overlay->opacity() == 1;
    });
    return shown ? window : nullptr;
}

QQuickWindow *windowMenu(Stage &stage)
{
    stage.windows().setTrayAvailable(false);
    QQuickWindow *window = openMainWithGallery(stage);
    click(itemOfType(window->contentItem(), "WindowMenu"));
    return window;
}

QQuickWindow *smallest(Stage &stage)
{
    QQuickWindow *window = withStatus(stage, u"Wallpaper set!"_s, false);
    window->resize(window->minimumSize());
    return QTest::qWaitFor([&] { return window->contentItem()->width() == 760; }) ? window
                                                                                  : nullptr;
}

/// Not Stage::openSettings(), which knows the window by its English title.
QQuickWindow *settings(Stage &stage)
{
    stage.windows().showSettings();
    auto *window = qobject_cast<QQuickWindow *>(QGuiApplication::topLevelWindows().value(0));
    return window && QTest::qWaitForWindowActive(window) ? window : nullptr;
}

QQuickWindow *savedKeys(Stage &stage)
{
    saveKeys({u"gemini"_s, u"openai"_s});
    return settings(stage);
}

QQuickWindow *typedKey(Stage &stage)
{
    QQuickWindow *window = settings(stage);
    QQuickItem *field = itemOfType(window->contentItem(), "SecureField");
    field->forceActiveFocus(Qt::TabFocusReason);
    type(window, key);
    return window;
}

QQuickWindow *advanced(Stage &stage)
{
    QQuickWindow *window = settings(stage);
    click(itemsOfType(window->contentItem(), "Tab_").value(1));
    QTest::mouseMove(window, {1, 1});
    return itemOfType(window->contentItem(), "AdvancedTab") ? window : nullptr;
}

QQuickWindow *providers(Stage &stage)
{
    QQuickWindow *window = advanced(stage);
    click(itemsOfType(window->contentItem(), "Picker").last());
    QTest::mouseMove(window, {1, 1});
    return window;
}

void stopSpinners(QQuickWindow *window)
{
    const auto spinners = itemsOfType(window->contentItem(), "Spinner");
    for (QQuickItem *spinner : spinners) {
        const auto parts = spinner->findChildren<QObject *>();
        for (QObject *part : parts) {
            if (part->inherits("QQuickAbstractAnimation")) {
                part->setProperty("running", false);
            }
        }
        spinner->setRotation(0);
    }
}

/// A file has the time of its creation, which nobody can set.
void setTimestamps(QQuickWindow *window)
{
    const auto shown = tiles(window);
    for (QQuickItem *tile : shown) {
        const int minute = 45 - 7 * tile->property("index").toInt();
        tile->setProperty("timestamp", u"Mar 14, 09:%1"_s.arg(minute, 2, 10, QLatin1Char('0')));
    }
}

bool picturesAreThere(QQuickWindow *window)
{
    const auto pictures = itemsOfType(window->contentItem(), "ui::Picture");
    return std::all_of(pictures.begin(), pictures.end(), [](const QQuickItem *picture) {
        return picture->property("source").toUrl().isEmpty()
            || picture->property("status").toInt() == Picture::Ready;
    });
}

} // namespace

QList<Scene> scenes()
{
    const QString longStatus
        = u"Network error: The connection was closed before the answer was complete. "_s.repeated(
            3);
    return {
        {u"main-empty"_s, [](Stage &stage) { return stage.openMain(); }},
        {u"main-every-note"_s, everyNote},
        {u"main-gallery"_s, openMainWithGallery},
        {u"main-generating"_s, generating},
        {u"main-status"_s,
            [](Stage &stage) { return withStatus(stage, u"Wallpaper set!"_s, false); }},
        {u"main-error"_s,
            [](Stage &stage) {
                return withStatus(stage, u"Failed: The desktop is not running"_s, true);
            }},
        {u"main-long-error"_s,
            [longStatus](Stage &stage) { return withStatus(stage, longStatus, true); }},
        {u"main-smallest"_s, smallest},
        {u"main-intervals"_s, intervals},
        {u"main-hover"_s, hoverTile},
        {u"main-preview"_s, preview},
        {u"main-window-menu"_s, windowMenu},
        {u"settings-no-keys"_s, settings},
        {u"settings-typed-key"_s, typedKey},
        {u"settings-saved-keys"_s, savedKeys},
        {u"settings-advanced"_s, advanced},
        {u"settings-providers"_s, providers},
    };
}

std::optional<QImage> pictureAtRest(QQuickWindow *window)
{
    constexpr int calm = 300; // Longer than any fading takes to begin or to go on.
    stopSpinners(window);
    QGuiApplication::styleHints()->setCursorFlashTime(0);
    QImage picture;
    QElapsedTimer unchanged;
    const bool rests = QTest::qWaitFor(
        [&] {
            setTimestamps(window);
            const QImage now = window->grabWindow();
            if (now != picture || !picturesAreThere(window)) {
                picture = now;
                unchanged.start();
            }
            return unchanged.elapsed() > calm;
        },
        10000);
    return rests ? std::optional(picture) : std::nullopt;
}

QList<QQuickItem *> topLayer(QQuickWindow *window)
{
    const auto popups = itemsOfType(window->contentItem(), "QQuickPopupItem");
    if (!popups.isEmpty()) {
        return popups;
    }
    if (QQuickItem *overlay = itemOfType(window->contentItem(), "PreviewOverlay")) {
        return {overlay};
    }
    return window->contentItem()->childItems();
}

} // namespace ui::fakes
