#pragma once

#include <QString>

namespace testlibs {

/// Gives this process a namespace of @p kind of its own, such as CLONE_NEWNS, which vanishes with
/// it; to be called before it starts a thread. Empty, or the reason why this system does not allow
/// it.
QString enterOwnNamespace(int kind);

} // namespace testlibs
