#include "app/coredumps.h"

#include <sys/resource.h>

namespace app {

void forbidCoreDumps()
{
    // A limit of 0 is for files alone: Linux hands a dump to a crash handler all the same, and asks
    // it to drop it. With 1, too little for any file, it makes no dump for either.
    //
    // PR_SET_DUMPABLE would do as well, but also give the program's folder below /proc to root, so
    // that portals and panels cannot tell any more who talks to them. The other thing it prevents,
    // to be traced by a program of the same person, would protect nothing: that one can read the
    // key file.
    //
    // There is nothing to be done if this fails: the limit is then 0 for good.
    const rlimit limit{.rlim_cur = 1, .rlim_max = 1};
    setrlimit(RLIMIT_CORE, &limit);
}

} // namespace app
