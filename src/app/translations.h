#pragma once

#include <QLocale>
#include <QString>

namespace app {

/// Has the program speak the languages of @p locale, the first for which @p folder has a catalogue,
/// and Qt's own texts with it; English without one. To be called once, before the first text is
/// made: what was made earlier stays as it is.
void installTranslations(const QLocale &locale = QLocale::system(),
    const QString &folder = QStringLiteral(":/plenaura/translations"));

} // namespace app
