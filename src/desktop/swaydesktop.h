#pragma once

#include "desktop/backend.h"

namespace desktop {

/// sway: told over its socket to show a picture on one output, until it reads its configuration
/// anew. It cannot be asked what it shows and takes any file, so its "done" is all that there is
/// to see.
class SwayDesktop : public Backend
{
public:
    /// Of a socket whose path is @p socket.
    explicit SwayDesktop(QString socket);

    QCoro::Task<SetResult> setPicture(Picture picture, Screen screen) override;

    /// Path of the session's socket; empty without one, or when nobody listens to it any more.
    static QString liveSocket();

private:
    const QString m_socket;
};

} // namespace desktop
