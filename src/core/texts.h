#pragma once

#include <QDateTime>
#include <QString>

namespace core::texts {

/// Label of an interval of @p minutes, in the person's language: whole hours from 60 up, the
/// remainder dropped.
QString formatInterval(qint64 minutes);
QString missingKey(const QString &providerName);
QString upscaleFailed(const QString &reason);
QString wallpaperNotSet(const QString &reason);
/// The time of day in the locale's short style, without a date.
QString shortTime(const QDateTime &moment);

} // namespace core::texts
