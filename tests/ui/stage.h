#pragma once

#include "managerfixture.h"
#include "ui/picture.h"
#include "ui/windows.h"

#include <QColor>
#include <QPointer>
#include <QQuickItem>
#include <QQuickWindow>

#include <memory>

namespace ui::fakes {

/// The windows over a manager in a home of its own, and a person's eyes and hands on them.
class Stage : public core::fakes::ManagerFixture
{
public:
    Stage();
    ~Stage();

    core::WallpaperManager &manager();
    Windows &windows();
    /// Opens the window and waits until it is on screen and has the keyboard.
    QQuickWindow *openMain();
    QQuickWindow *openSettings();
    QQuickWindow *mainWindow() const;
    QQuickWindow *settingsWindow() const;

    /// A real picture in the image folder.
    QUrl putPicture(const QString &name, QSize size = {640, 360}, const QColor &color = Qt::blue);
    /// @p count pictures, already in the gallery.
    void fillGallery(int count);

private:
    static QQuickWindow *shown(const QString &title);

    core::WallpaperManager *m_manager = nullptr;
    std::unique_ptr<Windows> m_windows;
};

/// Everything at and below @p root that is visible, from top to bottom as declared.
QList<QQuickItem *> visibleItems(QQuickItem *root);
QList<QQuickItem *> visibleItems(QQuickWindow *window);
/// The visible button, switch, picker or field with this title (a key field: its placeholder); null
/// if there is none.
QQuickItem *control(QQuickWindow *window, const QString &title);
QQuickItem *control(QQuickItem *root, const QString &title);
/// The visible label that shows this text.
QQuickItem *label(QQuickWindow *window, const QString &text);
QQuickItem *label(QQuickItem *root, const QString &text);
/// Texts of all visible labels.
QStringList texts(QQuickWindow *window);
/// The first visible item whose type, or a type it is derived from, begins with @p type.
QQuickItem *itemOfType(QQuickItem *root, const char *type);
QList<QQuickItem *> itemsOfType(QQuickItem *root, const char *type);
/// The visible tiles, in the order of the gallery.
QList<QQuickItem *> tiles(QQuickWindow *window);

/// The visible tile of the file with this name; null when there is none.
QQuickItem *tile(QQuickWindow *window, const QString &fileName);
/// The visible picture within a tile or the preview; null when there is none.
Picture *picture(QQuickItem *within);
/// Whether the picture within is decoded and shown.
bool isReady(QQuickItem *within);
/// The button that deletes what @p within stands for, a picture or a key; null when there is none.
QQuickItem *trash(QQuickItem *within);
/// The first visible picker of the window; null when there is none.
QQuickItem *picker(QQuickWindow *window);
/// The preview; null while it is not seen.
QQuickItem *overlay(QQuickWindow *window);
/// What is seen at @p point, in the window's own coordinates.
QColor colorAt(QQuickWindow *window, QPointF point);

QRectF place(QQuickItem *item);
void click(QQuickItem *item);
void click(QQuickItem *item, QPointF at);
void hover(QQuickItem *item);
void press(QQuickWindow *window, Qt::Key key, Qt::KeyboardModifiers modifiers = {});
void type(QQuickWindow *window, const QString &text);
/// The item that has the keyboard.
QQuickItem *focused(QQuickWindow *window);
/// Turns to the second tab of the settings; whether it came.
bool showAdvanced(QQuickWindow *window);

} // namespace ui::fakes
