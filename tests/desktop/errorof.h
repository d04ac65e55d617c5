#pragma once

#include "desktop/desktoppicture.h"

/// What people are told when it fails.
inline QString errorOf(const desktop::SetResult &result)
{
    return result ? QStringLiteral("no error") : result.error();
}
