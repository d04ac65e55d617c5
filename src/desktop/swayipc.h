#pragma once

#include "desktop/desktoppicture.h"

#include <QByteArray>

#include <optional>
#include <vector>

namespace desktop {

// What is said on sway's socket: a mark, the length and the type of what follows, then text; the
// answer has the question's type. All of it without any I/O, as the socket may be anybody's.

enum class SwayQuestion : quint32 {
    Command = 0,
    Outputs = 3,
};

/// More than any true answer, which has some thousand bytes for each output.
constexpr quint32 longestSwayAnswer = 1024 * 1024;

QByteArray swayMessage(SwayQuestion question, const QByteArray &text);

/// The text of the answer when @p received holds all of it, and absent as long as more must come.
/// An error as soon as this can be no answer to @p question, or one that is too long.
tl::expected<std::optional<QByteArray>, QString> swayAnswer(
    SwayQuestion question, const QByteArray &received);

/// What sway made of a command; its own words at the end when it refused.
SetResult swayCommandResult(const QByteArray &answer);

/// The outputs that are on, with their place on sway's own virtual desktop.
tl::expected<std::vector<Screen>, QString> swayOutputs(const QByteArray &answer);

/// Makes @p file the picture of one output; absent for a path that sway cannot be told.
std::optional<QByteArray> swayPictureCommand(const QString &output, const QString &file);

} // namespace desktop
