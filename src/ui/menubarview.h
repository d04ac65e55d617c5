#pragma once

#include <QMenu>

namespace core {
class WallpaperManager;
}

namespace ui {

/// The menu of the tray icon: what is going on, and the way to drive the program while its windows
/// are closed. Shows the manager's state as it changes, and reads it afresh when about to show.
class MenuBarView : public QMenu
{
    Q_OBJECT

public:
    explicit MenuBarView(core::WallpaperManager &manager, QWidget *parent = nullptr);

Q_SIGNALS:
    void openWindowRequested();
    void settingsRequested();
    void quitRequested();

private:
    QString statusLine() const;
    void refresh();

    core::WallpaperManager &m_manager;
    QAction *m_statusLine;
    QAction *m_generateNow;
    QAction *m_autoGenerate;
};

} // namespace ui
