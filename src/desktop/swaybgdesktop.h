#pragma once

#include "desktop/backend.h"
#include "desktop/backgroundprocesses.h"

namespace desktop {

/// Wayland compositors with a layer for backgrounds and nobody who paints there: a swaybg process
/// of our own does.
class SwaybgDesktop : public Backend
{
public:
    explicit SwaybgDesktop(std::shared_ptr<BackgroundProcesses> processes);

    QCoro::Task<SetResult> setPicture(Picture picture, Screen screen) override;

private:
    const std::shared_ptr<BackgroundProcesses> m_processes;
};

} // namespace desktop
