#include "doubles/workspace.h"

#import <AppKit/AppKit.h>

NSString *const NSWorkspaceDidWakeNotification = @"NSWorkspaceDidWakeNotification";

namespace {

QString text(NSString *string)
{
    return QString::fromUtf8([string UTF8String]);
}

NSString *string(const QString &text)
{
    return [NSString stringWithUTF8String:text.toUtf8().constData()];
}

int number(NSScreen *screen)
{
    return [[[screen deviceDescription] objectForKey:@"NSScreenNumber"] intValue];
}

} // namespace

@implementation NSScreen
+ (NSScreen *)screenOfNumber:(int)number
{
    NSScreen *screen = [[NSScreen alloc] init];
    screen->m_number = [[NSNumber alloc] initWithInt:number];
    return [screen autorelease];
}

- (void)dealloc
{
    [m_number release];
    [super dealloc];
}

+ (NSScreen *)mainScreen
{
    const std::optional<int> number = doubles::workspace().mainScreen;
    return number ? [NSScreen screenOfNumber:*number] : nullptr;
}

+ (NSArray *)screens
{
    NSMutableArray *screens = [NSMutableArray array];
    for (const int number : doubles::workspace().screens) {
        [screens addObject:[NSScreen screenOfNumber:number]];
    }
    return screens;
}

- (NSDictionary *)deviceDescription
{
    return [NSDictionary dictionaryWithObject:m_number forKey:@"NSScreenNumber"];
}
@end

@implementation NSWorkspace
+ (NSWorkspace *)sharedWorkspace
{
    static NSWorkspace *const workspace = [[NSWorkspace alloc] init];
    return workspace;
}

- (NSNotificationCenter *)notificationCenter
{
    if (m_notificationCenter == nullptr) {
        m_notificationCenter = [[NSNotificationCenter alloc] init];
    }
    return m_notificationCenter;
}

- (BOOL)setDesktopImageURL:(NSURL *)url
                 forScreen:(NSScreen *)screen
                   options:(NSDictionary *)options
                     error:(NSError **)error
{
    doubles::Workspace &workspace = doubles::workspace();
    workspace.calls.append({
        .hasFileUrl = static_cast<bool>([url isFileURL]),
        .path = text([url path]),
        .screen = screen ? std::optional(number(screen)) : std::nullopt,
        .options = options ? std::optional(static_cast<int>([options count])) : std::nullopt,
        .hasErrorSlot = error != nullptr,
    });
    if (workspace.refusal && error != nullptr) {
        NSDictionary *info = [NSDictionary dictionaryWithObject:string(*workspace.refusal)
                                                         forKey:NSLocalizedDescriptionKey];
        *error = [NSError errorWithDomain:NSCocoaErrorDomain code:4 userInfo:info];
    }
    return !workspace.refusal;
}
@end

namespace doubles {

Workspace &workspace()
{
    static Workspace workspace;
    return workspace;
}

void postDidWake(Center center)
{
    NSNotificationCenter *const notifications = center == Center::Workspace
        ? [[NSWorkspace sharedWorkspace] notificationCenter]
        : [NSNotificationCenter defaultCenter];
    [notifications postNotificationName:NSWorkspaceDidWakeNotification object:nullptr];
}

} // namespace doubles
