#include "core/texts.h"

#include <QCoreApplication>
#include <QLocale>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace core::texts {

QString formatInterval(qint64 minutes)
{
    if (minutes < 60) {
        return QCoreApplication::translate("Interval", "%1 min").arg(minutes);
    }
    const qint64 hours = minutes / 60;
    if (hours == 1) {
        return QCoreApplication::translate("Interval", "1 hour");
    }
    // Languages choose the form of a noun by the last digits of its number.
    const int lastDigits = int(hours % 1'000'000);
    return QCoreApplication::translate("Interval", "%1 hours", nullptr, lastDigits).arg(hours);
}

QString missingKey(const QString &providerName)
{
    return u"Missing "_s + providerName + u" API key — open Settings (⌘,)"_s;
}

QString upscaleFailed(const QString &reason)
{
    return u"Upscale failed, using original — "_s + reason;
}

QString wallpaperNotSet(const QString &reason)
{
    return u"Failed: "_s + reason;
}

QString shortTime(const QDateTime &moment)
{
    const QLocale locale = QLocale::system();
    // The C locale, alone among all, has seconds in its short format.
    static const QRegularExpression seconds(u"\\W*s+"_s);
    return locale.toString(moment.time(), locale.timeFormat(QLocale::ShortFormat).remove(seconds));
}

} // namespace core::texts
