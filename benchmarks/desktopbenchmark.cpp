// From a saved picture to the word of the desktop that runs here that it has it, and the program's
// own share of that time: desktopbenchmark DESKTOP SCREENS SCREENSHOT..., as tests/desktops/session
// starts it.
//
// The way is the program's own, from the call that sets the picture on. The own share is what this
// process works meanwhile, on all of its threads, and waits for the disk; the rest it sleeps until
// others have answered. Counted in processor time, it is the same on a busy machine, and it comes
// out rather too large: what two threads do at once counts twice. Nothing on this way waits for a
// clock, which would be seen in the whole time alone.
//
// The budget is one decode of the same picture and 30 ms, both measured beside it in the same way.
// As a millisecond is not the same on every machine, the 30 are those of one that copies an image
// of 25 MB in 14. Of each, the quickest of all rounds counts: what a machine has to do besides
// makes a decode of a PNG take up to 100 ms more, now this one and now that one, and never less.

#include "desktop/screenchanges.h"
#include "desktop/systemdesktoppicture.h"
#include "measure.h"
#include "photograph.h"

#include <QCoroTask>
#include <QDir>
#include <QEventLoop>
#include <QGuiApplication>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <iterator>

using namespace Qt::StringLiterals;

namespace {

constexpr int rounds = 7;
constexpr double copiesInBudget = 30.0 / 14;

[[noreturn]] void giveUp(const QString &why)
{
    std::printf("%s\n", qPrintable(why));
    std::fflush(stdout);
    std::_Exit(2);
}

/// The screens as they are seen, by a command that writes them into a file.
class Screens
{
public:
    explicit Screens(const QStringList &screenshot) : m_screenshot(screenshot) { }

    /// Waits until what fades in has done so, and nobody works on the picture any more.
    void settle() const
    {
        QImage before;
        for (QImage now = look(); now != before; now = look()) {
            before = now;
        }
    }

private:
    QImage look() const
    {
        const QString file = m_folder.filePath(u"screens.png"_s);
        QProcess camera;
        camera.start(m_screenshot.first(), m_screenshot.mid(1) + QStringList{file});
        if (!camera.waitForFinished() || camera.exitCode() != 0) {
            giveUp(u"The screens cannot be looked at"_s);
        }
        return QImage(file);
    }

    const QStringList m_screenshot;
    const QTemporaryDir m_folder;
};

/// Two pictures by turns, each time under a name that no desktop has read yet.
class Pictures
{
public:
    explicit Pictures(const QString &extension) : m_extension(extension)
    {
        for (int number = 0; number < 2; ++number) {
            // A quickly compressed PNG, which takes no less time to decode.
            const int quality = extension == u"jpg" ? 92 : 80;
            if (!photograph(number).save(name(number), nullptr, quality)) {
                giveUp(u"A picture cannot be written"_s);
            }
        }
    }

    QString next()
    {
        const QString file = name(++m_count + 1);
        if (link(QFile::encodeName(name(m_count % 2)).constData(),
                QFile::encodeName(file).constData())
            != 0) {
            giveUp(u"A picture cannot be linked"_s);
        }
        return file;
    }

private:
    QString name(int number) const
    {
        return m_folder.filePath(u"wallpaper_%1.%2"_s.arg(number).arg(m_extension));
    }

    const QTemporaryDir m_folder;
    const QString m_extension;
    int m_count = 0;
};

void setPicture(desktop::DesktopPicture &desktopPicture, const QString &file)
{
    const auto screen = desktopPicture.mainScreen();
    if (!screen) {
        giveUp(u"There is no screen"_s);
    }
    const auto result = QCoro::waitFor(desktopPicture.setPicture(file, *screen));
    if (!result) {
        giveUp(u"The picture was not set: "_s + result.error());
    }
}

double quickest(const QList<double> &seconds)
{
    return *std::min_element(seconds.begin(), seconds.end());
}

void measureFormat(const QString &title, const QString &extension,
    desktop::DesktopPicture &desktopPicture, const Screens &screens)
{
    Pictures pictures(extension);
    setPicture(desktopPicture, pictures.next());
    QList<double> whole;
    QList<double> own;
    QList<double> decoding;
    QList<double> copying;
    for (int round = 0; round < rounds; ++round) {
        screens.settle();
        const QString file = pictures.next();
        copying += measure::ownSeconds(measure::copySeconds);
        decoding += measure::ownSeconds([&] { const QImage image(file); });
        own += measure::ownSeconds(
            [&] { whole += measure::seconds([&] { setPicture(desktopPicture, file); }); });
    }
    const std::string name = (title + u", "_s + extension.toUpper() + u": "_s).toStdString();
    const auto milliseconds = [&](const char *what, const QList<double> &seconds) {
        measure::tell((name + what).c_str(), 1000 * quickest(seconds));
    };
    milliseconds("until it is set, ms", whole);
    milliseconds("own share, ms", own);
    milliseconds("one decode, ms", decoding);
    const double budget = quickest(decoding) + copiesInBudget * quickest(copying);
    measure::expectAtMost((name + "own share, budgets").c_str(), quickest(own) / budget, 1);
}

/// What the program does at its start, when it is first told of the screens, is not measured.
void waitForStart()
{
    const desktop::ScreenChanges changes(QDBusConnection::sessionBus(), {});
    QEventLoop loop;
    QObject::connect(&changes, &desktop::ScreenChanges::settled, &loop, &QEventLoop::quit);
    loop.exec();
}

} // namespace

int main(int argc, char *argv[])
{
    // Before Qt takes those that sound like its own.
    QStringList arguments;
    std::transform(argv, argv + argc, std::back_inserter(arguments),
        [](const char *argument) { return QString::fromLocal8Bit(argument); });
    const QGuiApplication application(argc, argv);
    if (arguments.size() < 4) {
        giveUp(u"usage: desktopbenchmark DESKTOP SCREENS SCREENSHOT..."_s);
    }
    std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
    const QString title = arguments.at(1) + u" "_s + arguments.at(2);
    const Screens screens(arguments.mid(3));
    desktop::SystemDesktopPicture desktopPicture;
    waitForStart();
    measure::copySeconds(); // Makes what is copied.
    measureFormat(title, u"png"_s, desktopPicture, screens);
    measureFormat(title, u"jpg"_s, desktopPicture, screens);
    return measure::verdict();
}
