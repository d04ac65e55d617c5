#include "core/portableclock.h"
#include "desktop/macwake.h"

namespace core {

std::unique_ptr<Clock> Clock::system()
{
    auto clock = std::make_unique<PortableClock>();
    auto *const wake = new desktop::MacWake(clock.get());
    QObject::connect(wake, &desktop::MacWake::woke, clock.get(), &PortableClock::woke);
    return clock;
}

} // namespace core
