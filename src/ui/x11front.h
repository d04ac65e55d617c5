#pragma once

#include <QByteArray>

class QWindow;

namespace ui {

/// Asks the window manager to put @p window, which is shown, before all others and to give it the
/// keyboard. Qt asks by the time at which the program was last used itself, which window managers
/// take for an old wish when the person has since used another program, such as the panel by which
/// they ask now. @p startupId is what a launcher has handed over with the wish; it tells the time
/// of it, and the launcher is told that its start is over. May be empty. Does nothing where there
/// is no X server.
void putInFrontOnX11(const QWindow &window, const QByteArray &startupId);

} // namespace ui
