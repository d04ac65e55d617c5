#pragma once

namespace app {

/// Lets go of all code and unused heap that this process has in memory. What runs on comes back by
/// itself, within a millisecond in all. Most of what starting needs is never needed again, and who
/// stays in the tray for months should not keep it from others. Does nothing where the system has
/// no way to.
void releaseCodePages();

} // namespace app
