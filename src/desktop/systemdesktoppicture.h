#pragma once

#include "desktop/desktoppicture.h"
#include "desktop/gnomedisplays.h"
#include "desktop/screenchanges.h"
#include "desktop/sessionbus.h"

#include <QFuture>
#include <QPromise>

#include <memory>

class QScreen;

namespace desktop {

class BackgroundProcesses;

/// A place in the row of changes, held until the change is made.
struct Turn
{
    QFuture<void> before; ///< Finished when the change before is made.
    std::shared_ptr<QPromise<void>> over; ///< To be finished when it is made.
};

/// The desktop the program runs on. Which one that is, is found out at each call: a session may
/// change its desktop while the program runs. Changes are made one after the other, in the order in
/// which they were asked for. Screens that come, go or change their size are followed where the
/// desktop does not do it itself.
///
/// A task that was started goes on when this object is gone, but pictures that are shown by
/// processes of ours are then no longer seen.
class SystemDesktopPicture : public DesktopPicture
{
public:
    SystemDesktopPicture();

    std::optional<Screen> mainScreen() const override;
    QCoro::Task<SetResult> setPicture(QString file, Screen screen) override;

private:
    Turn takeTurn();
    const QScreen *primaryScreen() const;

    std::shared_ptr<SessionBus> m_bus = SessionBus::shared();
    std::shared_ptr<BackgroundProcesses> m_processes;
    QFuture<void> m_lastTurn;
    ScreenChanges m_screenChanges;
    GnomePrimaryScreen m_gnomePrimary;
};

} // namespace desktop
