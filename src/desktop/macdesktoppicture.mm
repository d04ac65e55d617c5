#include "desktop/macdesktoppicture.h"

#import <AppKit/AppKit.h>

namespace desktop {

using namespace Qt::StringLiterals;

namespace {

QString text(NSString *string)
{
    return QString::fromUtf8([string UTF8String]);
}

// The number tells screens apart; their place does not matter here.
Screen described(NSScreen *screen)
{
    NSNumber *number = [[screen deviceDescription] objectForKey:@"NSScreenNumber"];
    return {text([number stringValue]), {}};
}

NSScreen *attachedScreen(const Screen &screen)
{
    for (NSScreen *candidate in [NSScreen screens]) {
        if (described(candidate) == screen) {
            return candidate;
        }
    }
    return nullptr;
}

SetResult setDesktopImage(const QString &file, const Screen &screen)
{
    // Half a pair of surrogates has no UTF-8, and the system raises an exception at such a path.
    if (!file.isValidUtf16()) {
        return tl::make_unexpected(u"The file's name is not valid text"_s);
    }
    @autoreleasepool {
        NSScreen *target = attachedScreen(screen);
        if (target == nullptr) {
            return tl::make_unexpected(u"No screen found"_s);
        }
        NSString *path = [NSString stringWithUTF8String:file.toUtf8().constData()];
        NSError *error = nullptr;
        // No options is an empty dictionary; a missing one is not allowed.
        const bool isSet =
            [[NSWorkspace sharedWorkspace] setDesktopImageURL:[NSURL fileURLWithPath:path]
                                                    forScreen:target
                                                      options:@{}
                                                        error:&error];
        return isSet ? SetResult() : tl::make_unexpected(text([error localizedDescription]));
    }
}

} // namespace

std::unique_ptr<DesktopPicture> DesktopPicture::system()
{
    return std::make_unique<MacDesktopPicture>();
}

std::optional<Screen> MacDesktopPicture::mainScreen() const
{
    @autoreleasepool {
        NSScreen *screen = [NSScreen mainScreen];
        return screen == nullptr ? std::nullopt : std::optional(described(screen));
    }
}

QCoro::Task<SetResult> MacDesktopPicture::setPicture(QString file, Screen screen)
{
    co_return setDesktopImage(file, screen);
}

} // namespace desktop
