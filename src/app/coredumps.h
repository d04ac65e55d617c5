#pragma once

namespace app {

/// Keeps the keys, which lie in the memory of the running program, out of any dump of it.
void forbidCoreDumps();

} // namespace app
