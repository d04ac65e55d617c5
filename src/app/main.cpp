#include "app/activationtoken.h"
#include "app/coredumps.h"
#include "app/singleinstance.h"
#include "app/translations.h"
#include "app/wallpaperapp.h"

#include <QApplication>
#include <QIcon>

#include <cstdio>

using namespace Qt::StringLiterals;

int main(int argc, char *argv[])
{
    app::forbidCoreDumps();
    const auto token = app::ActivationToken::ofThisStart();
    QApplication application(argc, argv);
    QCoreApplication::setOrganizationName(u"tarnel"_s);
    QCoreApplication::setOrganizationDomain(u"tarnel.com"_s);
    QCoreApplication::setApplicationName(u"Plenaura"_s);
    QGuiApplication::setApplicationDisplayName(u"Plenaura"_s);
    QGuiApplication::setDesktopFileName(u"com.tarnel.Plenaura"_s);
    QGuiApplication::setWindowIcon(
        QIcon::fromTheme(u"com.tarnel.Plenaura"_s, QIcon(u":/plenaura/application.svg"_s)));
    app::installTranslations();

    app::SingleInstance instance;
    switch (instance.claim(token)) {
    case app::SingleInstance::Role::First:
        break;
    case app::SingleInstance::Role::Second:
        return EXIT_SUCCESS;
    case app::SingleInstance::Role::Unreachable:
        std::fputs("Plenaura is already running but does not answer.\n", stderr);
        return EXIT_FAILURE;
    }

    app::WallpaperApp wallpaperApp(instance);
    token.adopt();
    wallpaperApp.start();
    app::ActivationToken::drop();
    return QApplication::exec();
}
