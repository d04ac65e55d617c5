#pragma once

#include <QList>
#include <QString>

#include <optional>

namespace doubles {

/// How the stand-in for AppKit was asked to set a desktop picture.
struct DesktopImageCall
{
    bool hasFileUrl;
    QString path;
    std::optional<int> screen; ///< Its number; absent when no screen was given.
    std::optional<int> options; ///< How many; absent when there is no dictionary at all.
    bool hasErrorSlot;
};

/// What the stand-in shows, how it answers, and what it was asked.
struct Workspace
{
    QList<int> screens{1}; ///< Their numbers.
    std::optional<int> mainScreen{1};
    std::optional<QString> refusal; ///< The description of the error, when setting fails.
    QList<DesktopImageCall> calls;
};

/// The one workspace of the process, as on the system that it stands in for.
Workspace &workspace();

enum class Center { Workspace, Program };
/// Tells in a notification centre that the computer woke.
void postDidWake(Center center);

} // namespace doubles
