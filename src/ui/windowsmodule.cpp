#include "ui/windows.h"

extern "C" Q_DECL_EXPORT ui::WindowSet *plenauraMakeWindows(
    core::WallpaperManager &manager, QSettings &store, const std::function<void()> &reallyQuit)
{
    auto *const windows = new ui::Windows(manager, store);
    QObject::connect(windows, &ui::Windows::reallyQuitRequested, windows, reallyQuit);
    return windows;
}

static_assert(std::is_same_v<ui::MakeWindows, decltype(&plenauraMakeWindows)>);
