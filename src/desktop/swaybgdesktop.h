#pragma once

#include "desktop/backend.h"
#include "desktop/backgroundprocesses.h"

#include <QStringList>

namespace desktop {

/// Wayland compositors with a layer for backgrounds and nobody who paints there: a swaybg process
/// of our own does.
class SwaybgDesktop : public Backend
{
public:
    explicit SwaybgDesktop(std::shared_ptr<BackgroundProcesses> processes);

    QCoro::Task<SetResult> setPicture(Picture picture, Screen screen) override;

    /// The compositor's name for a screen; absent for a screen that it does not have. A single
    /// output is the screen even by another name, as X servers within Wayland make up names.
    static std::optional<QString> outputName(const QStringList &outputs, const QString &screen);

private:
    const std::shared_ptr<BackgroundProcesses> m_processes;
};

} // namespace desktop
