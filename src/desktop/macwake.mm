#include "desktop/macwake.h"

#import <AppKit/AppKit.h>

@interface PlenauraWakeObserver : NSObject {
@public
    desktop::MacWake *m_wake;
}
- (void)computerDidWake:(NSNotification *)notification;
@end

@implementation PlenauraWakeObserver
- (void)computerDidWake:(NSNotification *)notification
{
    Q_UNUSED(notification)
    Q_EMIT m_wake->woke();
}
@end

namespace desktop {

namespace {

// Sleep and waking are told here only, not in the program's own notification centre.
NSNotificationCenter *center()
{
    return [[NSWorkspace sharedWorkspace] notificationCenter];
}

} // namespace

/// Keeps the Objective-C object out of the header, so that all sources can include that.
struct MacWake::Observer
{
    PlenauraWakeObserver *object = [[PlenauraWakeObserver alloc] init];
};

MacWake::MacWake(QObject *parent) : QObject(parent), m_observer(std::make_unique<Observer>())
{
    m_observer->object->m_wake = this;
    [center() addObserver:m_observer->object
                 selector:@selector(computerDidWake:)
                     name:NSWorkspaceDidWakeNotification
                   object:nullptr];
}

MacWake::~MacWake()
{
    [center() removeObserver:m_observer->object];
}

} // namespace desktop
