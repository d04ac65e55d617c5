#include "app/translations.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QTranslator>

using namespace Qt::StringLiterals;

namespace app {

namespace {

void install(const QLocale &locale, const QString &name, const QString &folder)
{
    auto *const translator = new QTranslator(QCoreApplication::instance());
    if (translator->load(locale, name, u"_"_s, folder)) {
        QCoreApplication::installTranslator(translator);
    } else {
        delete translator;
    }
}

} // namespace

void installTranslations(const QLocale &locale, const QString &folder)
{
    install(locale, u"qtbase"_s, QLibraryInfo::path(QLibraryInfo::TranslationsPath));
    install(locale, u"plenaura"_s, folder);
}

} // namespace app
