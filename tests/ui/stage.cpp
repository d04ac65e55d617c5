#include "stage.h"

#include <QGuiApplication>
#include <QImage>
#include <QTest>
#include <QtQuickTest/quicktest.h>

using namespace Qt::StringLiterals;

namespace ui::fakes {

Stage::Stage()
{
    // The same picture everywhere, and no graphics card needed.
    QQuickWindow::setSceneGraphBackend(u"software"_s);
    QGuiApplication::setQuitOnLastWindowClosed(false);
    QGuiApplication::setApplicationDisplayName(u"Plenaura"_s);
}

Stage::~Stage() = default;

core::WallpaperManager &Stage::manager()
{
    if (!m_manager) {
        m_manager = &start();
    }
    return *m_manager;
}

Windows &Stage::windows()
{
    if (!m_windows) {
        m_windows = std::make_unique<Windows>(manager(), settings);
    }
    return *m_windows;
}

QQuickWindow *Stage::openMain()
{
    windows().showMainWindow();
    QQuickWindow *window = mainWindow();
    return window && QTest::qWaitForWindowActive(window) ? window : nullptr;
}

QQuickWindow *Stage::openSettings()
{
    windows().showSettings();
    QQuickWindow *window = settingsWindow();
    return window && QTest::qWaitForWindowActive(window) ? window : nullptr;
}

QQuickWindow *Stage::mainWindow() const
{
    return shown(u"Plenaura"_s);
}

QQuickWindow *Stage::settingsWindow() const
{
    return shown(u"Settings"_s);
}

QQuickWindow *Stage::shown(const QString &title)
{
    const auto windows = QGuiApplication::topLevelWindows();
    for (QWindow *window : windows) {
        if (window->isVisible() && window->title() == title) {
            return qobject_cast<QQuickWindow *>(window);
        }
    }
    return nullptr;
}

QUrl Stage::putPicture(const QString &name, QSize size, const QColor &color)
{
    const QUrl url = putImage(name);
    QImage picture(size, QImage::Format_RGB32);
    picture.fill(color);
    if (!picture.save(url.toLocalFile(), name.endsWith(u".jpg"_s) ? "JPEG" : "PNG")) {
        qFatal("cannot write %s", qPrintable(url.toLocalFile()));
    }
    return url;
}

void Stage::fillGallery(int count)
{
    for (int number = 0; number < count; ++number) {
        putPicture(u"wallpaper_%1.png"_s.arg(number, 4, 10, QLatin1Char('0')));
    }
    manager().reloadHistory();
}

QList<QQuickItem *> visibleItems(QQuickItem *root)
{
    QList<QQuickItem *> items;
    if (root && root->isVisible()) {
        items << root;
        const auto children = root->childItems();
        for (QQuickItem *child : children) {
            items << visibleItems(child);
        }
    }
    return items;
}

QList<QQuickItem *> visibleItems(QQuickWindow *window)
{
    return visibleItems(window->contentItem());
}

QQuickItem *control(QQuickItem *root, const QString &title)
{
    const auto items = visibleItems(root);
    for (QQuickItem *item : items) {
        const bool isControl = item->inherits("QQuickControl") || item->inherits("QQuickTextInput")
            || item->inherits("QQuickFocusScope");
        const QVariant name = item->property("title");
        const QVariant shown = name.isValid() ? name : item->property("placeholderText");
        if (isControl && shown == title) {
            return item;
        }
    }
    return nullptr;
}

QQuickItem *control(QQuickWindow *window, const QString &title)
{
    return control(window->contentItem(), title);
}

QQuickItem *label(QQuickItem *root, const QString &text)
{
    const auto items = visibleItems(root);
    for (QQuickItem *item : items) {
        if (item->inherits("QQuickText") && item->property("text") == text) {
            return item;
        }
    }
    return nullptr;
}

QQuickItem *label(QQuickWindow *window, const QString &text)
{
    return label(window->contentItem(), text);
}

QStringList texts(QQuickWindow *window)
{
    QStringList texts;
    const auto items = visibleItems(window);
    for (const QQuickItem *item : items) {
        if (item->inherits("QQuickText")) {
            texts << item->property("text").toString();
        }
    }
    return texts;
}

QList<QQuickItem *> itemsOfType(QQuickItem *root, const char *type)
{
    QList<QQuickItem *> found;
    const auto items = visibleItems(root);
    for (QQuickItem *item : items) {
        for (const auto *meta = item->metaObject(); meta; meta = meta->superClass()) {
            if (QByteArrayView(meta->className()).startsWith(type)) {
                found << item;
                break;
            }
        }
    }
    return found;
}

QQuickItem *itemOfType(QQuickItem *root, const char *type)
{
    return itemsOfType(root, type).value(0);
}

QList<QQuickItem *> tiles(QQuickWindow *window)
{
    QList<QQuickItem *> tiles = itemsOfType(window->contentItem(), "HistoryTile");
    std::sort(tiles.begin(), tiles.end(), [](const QQuickItem *one, const QQuickItem *other) {
        return one->property("index").toInt() < other->property("index").toInt();
    });
    return tiles;
}

QQuickItem *tile(QQuickWindow *window, const QString &fileName)
{
    const auto all = tiles(window);
    for (QQuickItem *one : all) {
        if (one->property("fileName") == fileName) {
            return one;
        }
    }
    return nullptr;
}

Picture *picture(QQuickItem *within)
{
    return qobject_cast<Picture *>(itemOfType(within, "ui::Picture"));
}

bool isReady(QQuickItem *within)
{
    return picture(within) && picture(within)->status() == Picture::Ready;
}

QQuickItem *trash(QQuickItem *within)
{
    const auto buttons = itemsOfType(within, "PushButton");
    const auto found = std::find_if(buttons.begin(), buttons.end(),
        [](const QQuickItem *button) { return button->property("symbol") == u"trash"_s; });
    return found == buttons.end() ? nullptr : *found;
}

QQuickItem *picker(QQuickWindow *window)
{
    return itemOfType(window->contentItem(), "Picker");
}

QQuickItem *overlay(QQuickWindow *window)
{
    return itemOfType(window->contentItem(), "PreviewOverlay");
}

QColor colorAt(QQuickWindow *window, QPointF point)
{
    const QImage image = window->grabWindow();
    return image.pixelColor((point * image.devicePixelRatio()).toPoint());
}

QRectF place(QQuickItem *item)
{
    // Rows and columns put their children in place only before the next frame.
    for (QQuickItem *parent = item; parent; parent = parent->parentItem()) {
        QQuickTest::qWaitForPolish(parent);
    }
    // A text's own bounds are those of its letters.
    return item->mapRectToScene({{}, item->size()});
}

void click(QQuickItem *item, QPointF at)
{
    QTest::mouseClick(item->window(), Qt::LeftButton, {}, item->mapToScene(at).toPoint());
}

void click(QQuickItem *item)
{
    click(item, item->boundingRect().center());
}

void hover(QQuickItem *item)
{
    // A pointer that is there already would not be a move.
    QTest::mouseMove(item->window(), {1, 1});
    QTest::mouseMove(item->window(), place(item).center().toPoint());
}

void press(QQuickWindow *window, Qt::Key key, Qt::KeyboardModifiers modifiers)
{
    QTest::keyClick(window, key, modifiers);
}

void type(QQuickWindow *window, const QString &text)
{
    for (const QChar character : text) {
        QTest::keyClick(window, character.toLatin1());
    }
}

QQuickItem *focused(QQuickWindow *window)
{
    return window->activeFocusItem();
}

bool showAdvanced(QQuickWindow *window)
{
    click(control(window, u"Advanced"_s));
    return QTest::qWaitFor([&] { return itemOfType(window->contentItem(), "AdvancedTab"); });
}

} // namespace ui::fakes
