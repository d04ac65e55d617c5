#include "storage/imagename.h"

#include <QCalendar>

using namespace Qt::StringLiterals;

namespace storage {
namespace {

/// Qt's locales do not know their calendar. Where neither Gregorian nor one of Qt's is in daily use
/// (Thailand, for one), the names stay Gregorian.
QCalendar::System calendarOf(const QLocale &locale)
{
    switch (locale.territory()) {
    case QLocale::Afghanistan:
    case QLocale::Iran:
        return QCalendar::System::Jalali;
    default:
        return QCalendar::System::Gregorian;
    }
}

} // namespace

QString imageName(const QDateTime &time, const QLocale &locale)
{
    return "wallpaper_"_L1
        + locale.toString(time, u"yyyy-MM-dd_HH-mm-ss"_s, QCalendar(calendarOf(locale)));
}

} // namespace storage
