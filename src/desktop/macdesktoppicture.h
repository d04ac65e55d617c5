#pragma once

#include "desktop/desktoppicture.h"

namespace desktop {

/// The desktop of macOS. The file is not looked at first: the system says itself what is wrong with
/// it, in the person's language.
class MacDesktopPicture : public DesktopPicture
{
public:
    std::optional<Screen> mainScreen() const override;
    QCoro::Task<SetResult> setPicture(QString file, Screen screen) override;
};

} // namespace desktop
