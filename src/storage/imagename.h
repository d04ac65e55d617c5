#pragma once

#include <QDateTime>
#include <QLocale>
#include <QString>

namespace storage {

/// The name, without an extension, of a picture saved at @p time: "wallpaper_" and the date and
/// time to the second, in the digits of @p locale and the calendar that its territory lives by.
QString imageName(const QDateTime &time, const QLocale &locale);

} // namespace storage
