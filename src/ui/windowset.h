#pragma once

#include <functional>

class QSettings;

namespace core {
class WallpaperManager;
}

namespace ui {

/// The program's windows as its shell sees them, which knows nothing of Qt Quick.
class WindowSet
{
public:
    WindowSet() = default;
    WindowSet(const WindowSet &) = delete;
    WindowSet &operator=(const WindowSet &) = delete;
    virtual ~WindowSet() = default;

    /// Opens the window, or brings the open one to the front.
    virtual void showMainWindow() = 0;
    virtual void showSettings() = 0;
    /// Closes every window that can be a main window, each as its user would.
    virtual void closeAll() = 0;
    virtual bool isMainWindowShown() const = 0;
    virtual bool isSettingsShown() const = 0;
    /// Whether a tray menu is in reach. Where it is not, the main window offers "Settings..." and
    /// "Quit" itself.
    virtual void setTrayAvailable(bool available) = 0;
};

/// What the module of windows exports, by the name of plenauraMakeWindows. @p reallyQuit is called
/// when "Quit" was chosen in a window; the caller owns the result.
using MakeWindows = WindowSet *(*)(core::WallpaperManager &manager, QSettings &store,
    const std::function<void()> &reallyQuit);

} // namespace ui
