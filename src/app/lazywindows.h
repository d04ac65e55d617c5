#pragma once

#include "ui/windowset.h"

#include <QObject>

#include <memory>

namespace app {

/// The program's windows, loaded with all of Qt Quick when the first one is asked for: a program
/// that was started into the tray gets by without.
class LazyWindows : public QObject
{
    Q_OBJECT

public:
    /// @p manager and @p store must outlive this object.
    LazyWindows(core::WallpaperManager &manager, QSettings &store, QObject *parent = nullptr);
    ~LazyWindows() override;

    bool isMainWindowShown() const { return m_windows && m_windows->isMainWindowShown(); }
    bool isSettingsShown() const { return m_windows && m_windows->isSettingsShown(); }
    void setTrayAvailable(bool available);

public Q_SLOTS:
    void showMainWindow() { windows().showMainWindow(); }
    void showSettings() { windows().showSettings(); }
    void closeAll();

Q_SIGNALS:
    /// "Quit" was chosen in a window: end the program for real.
    void reallyQuitRequested();

private:
    ui::WindowSet &windows();
    std::unique_ptr<ui::WindowSet> load();

    core::WallpaperManager &m_manager;
    QSettings &m_store;
    std::unique_ptr<ui::WindowSet> m_windows;
    bool m_trayAvailable = true;
};

} // namespace app
