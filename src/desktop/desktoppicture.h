#pragma once

#include <QCoroTask>
#include <QRect>
#include <QString>

#include <memory>
#include <optional>

#include <tl/expected.hpp>

namespace desktop {

/// A screen as the desktops know it.
struct Screen
{
    QString name; ///< The output's name, such as "HDMI-1".
    /// Place and size on the virtual desktop, in device pixels. Under Wayland the place is in the
    /// compositor's own units, as there is no other.
    QRect geometry;

    friend bool operator==(const Screen &, const Screen &) = default;
};

/// Nothing, or one sentence for people that says why the picture was not set.
using SetResult = tl::expected<void, QString>;

/// The desktop picture of one screen; other screens keep theirs.
///
/// Called and resumed on the main thread, which is never blocked for longer than a moment: the
/// file is decoded elsewhere, and a desktop that hangs ends in an error after three seconds.
class DesktopPicture
{
public:
    DesktopPicture() = default;
    DesktopPicture(const DesktopPicture &) = delete;
    DesktopPicture &operator=(const DesktopPicture &) = delete;
    virtual ~DesktopPicture() = default;

    /// The screen of the window with keyboard focus, else the primary one; absent when no screen
    /// is attached.
    virtual std::optional<Screen> mainScreen() const = 0;

    /// Makes @p file the picture of @p screen. Succeeds only if the file decodes, the desktop took
    /// the setting, and reading it back shows it.
    virtual QCoro::Task<SetResult> setPicture(QString file, Screen screen) = 0;

    /// The desktop this program runs on.
    static std::unique_ptr<DesktopPicture> system();
};

} // namespace desktop
