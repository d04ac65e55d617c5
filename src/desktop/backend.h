#pragma once

#include "desktop/desktoppicture.h"
#include "desktop/picturefile.h"

namespace desktop {

/// One way of setting the desktop picture of one screen; each desktop has its own in a file of its
/// own, and choosedesktop.h alone knows them all.
///
/// Called and resumed on the main thread. Most desktops answer "done" to anything, so success means
/// that what they keep was read back and is the picture.
class Backend
{
public:
    Backend() = default;
    Backend(const Backend &) = delete;
    Backend &operator=(const Backend &) = delete;
    virtual ~Backend() = default;

    /// The backend must outlive the task.
    virtual QCoro::Task<SetResult> setPicture(Picture picture, Screen screen) = 0;

    /// Screens may have come, gone or changed their size: makes up for what the desktop does not do
    /// by itself. The backend must outlive the task.
    virtual QCoro::Task<SetResult> followScreens() { co_return {}; }
};

} // namespace desktop
