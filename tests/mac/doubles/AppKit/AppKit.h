// As much of AppKit as the program calls; workspace.h is the tests' side of it.
#pragma once

#import <Foundation/Foundation.h>

@interface NSScreen : NSObject {
    NSNumber *m_number;
}
+ (NSScreen *)mainScreen;
+ (NSArray *)screens;
- (NSDictionary *)deviceDescription;
@end

@interface NSWorkspace : NSObject {
    NSNotificationCenter *m_notificationCenter;
}
+ (NSWorkspace *)sharedWorkspace;
- (NSNotificationCenter *)notificationCenter;
- (BOOL)setDesktopImageURL:(NSURL *)url
                 forScreen:(NSScreen *)screen
                   options:(NSDictionary *)options
                     error:(NSError **)error;
@end

extern NSString *const NSWorkspaceDidWakeNotification;
