#include "picturecomparison.h"
#include "scenes.h"

#include <QApplication>
#include <QDir>
#include <QFont>
#include <QPalette>

#include <cstdio>

using namespace Qt::StringLiterals;
using namespace ui::fakes;

namespace {

QPalette lightPalette()
{
    QPalette palette(QColor(0xef, 0xf0, 0xf1), QColor(0xef, 0xf0, 0xf1));
    palette.setColor(QPalette::WindowText, QColor(0x1f, 0x22, 0x25));
    palette.setColor(QPalette::ButtonText, QColor(0x1f, 0x22, 0x25));
    palette.setColor(QPalette::Base, Qt::white);
    palette.setColor(QPalette::Button, QColor(0xfc, 0xfc, 0xfc));
    palette.setColor(QPalette::Highlight, QColor(0x2f, 0x74, 0xc8));
    return palette;
}

QPalette darkPalette()
{
    QPalette palette(QColor(0x35, 0x35, 0x38), QColor(0x2a, 0x2a, 0x2c));
    palette.setColor(QPalette::Base, QColor(0x1e, 0x1e, 0x20));
    palette.setColor(QPalette::Highlight, QColor(0x3d, 0xae, 0xe9));
    return palette;
}

/// Nothing of this computer's own looks.
void useFixedLooks(const QString &scheme)
{
    QFont font(u"DejaVu Sans"_s);
    font.setPixelSize(13);
    QGuiApplication::setFont(font);
    QGuiApplication::setPalette(scheme == "dark"_L1 ? darkPalette() : lightPalette());
}

std::optional<QImage> pictureOf(const Scene &scene)
{
    Stage stage;
    QQuickWindow *window = scene.open(stage);
    return window ? pictureAtRest(window) : std::nullopt;
}

void save(const QImage &picture, const QString &file)
{
    // The alpha of an opaque window and the best compression: a third of the size.
    if (!picture.convertToFormat(QImage::Format_RGB888).save(file, "PNG", 0)) {
        qFatal("cannot write %s", qPrintable(file));
    }
}

/// Whether @p made is what is approved; says what is not.
bool isApproved(const QImage &made, const QString &approvedFile, const QString &differenceFile)
{
    const QImage approved(approvedFile);
    if (approved.isNull()) {
        std::printf("%s: not approved yet\n", qPrintable(approvedFile));
        return false;
    }
    const auto found = difference(approved, made);
    if (!found) {
        return true;
    }
    const QRect where = found->where;
    std::printf("%s: %lld pixels differ between %d,%d and %d,%d; see %s\n",
        qPrintable(approvedFile), static_cast<long long>(found->pixels), where.left(), where.top(),
        where.right(), where.bottom(), qPrintable(differenceFile));
    save(found->marked, differenceFile);
    return false;
}

} // namespace

/// Shows every window in every state and writes what is seen:
/// windowpictures OUT-FOLDER light|dark [APPROVED-FOLDER]
/// With a folder of approved pictures, fails if one of them looks different.
int main(int argc, char *argv[])
{
    // Times are shown in one way, and lengths follow QT_SCALE_FACTOR alone.
    qputenv("LC_ALL", "C.UTF-8");
    QApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const QString scheme = arguments.at(2);
    useFixedLooks(scheme);

    bool good = true;
    const auto all = scenes();
    for (const Scene &scene : all) {
        const auto picture = pictureOf(scene);
        if (!picture) {
            std::printf("%s: does not come to rest\n", qPrintable(scene.name));
            good = false;
            continue;
        }
        const QString name
            = u"%1-%2-%3x"_s.arg(scene.name, scheme).arg(application.devicePixelRatio());
        const QString file = QDir(arguments.at(1)).filePath(name);
        save(*picture, file + u".png"_s);
        if (arguments.size() > 3) {
            const QString approved = QDir(arguments.at(3)).filePath(name + u".png"_s);
            good = isApproved(*picture, approved, file + u"-difference.png"_s) && good;
        }
    }
    return good ? EXIT_SUCCESS : EXIT_FAILURE;
}
