// The main window over a thousand pictures of 3840x2160 pixels.

#include "measure.h"
#include "photograph.h"
#include "stage.h"
#include "storage/imagestore.h"
#include "ui/picture.h"
#include "ui/picturereader.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QTest>

#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdio>

using namespace Qt::StringLiterals;
using namespace ui::fakes;

namespace {

constexpr int rounds = 5;
constexpr int distinctPictures = 4;

/// Milliseconds that this thread has worked; other programs' share of the processor is not in it.
double worked()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return double(time.tv_sec) * 1e3 + double(time.tv_nsec) / 1e6;
}

/// Knows how long the longest event took, from its delivery until the loop could go on.
class TimedApplication : public QApplication
{
public:
    using QApplication::QApplication;

    bool notify(QObject *receiver, QEvent *event) override
    {
        if (m_depth > 0) {
            return QApplication::notify(receiver, event);
        }
        ++m_depth;
        const double before = worked();
        const bool result = QApplication::notify(receiver, event);
        m_longest = std::max(m_longest, worked() - before);
        --m_depth;
        return result;
    }

    /// In milliseconds of work, since it was last asked.
    double takeLongest() { return std::exchange(m_longest, 0); }

private:
    double m_longest = 0;
    int m_depth = 0;
};

/// A few pictures under many names. Only the first of these takes place on the disk.
class Gallery
{
public:
    Gallery(const QString &folder, const QString &extension)
        : m_folder(folder), m_extension(extension)
    {
        QDir().mkpath(folder);
        for (int number = 0; number < distinctPictures; ++number) {
            const bool written
                = photograph(number).save(name(number), nullptr, extension == u"jpg" ? 92 : -1);
            if (!written) {
                qFatal("cannot write %s", qPrintable(name(number)));
            }
        }
    }

    void growTo(int count)
    {
        for (int number = distinctPictures; number < count; ++number) {
            const QByteArray original = QFile::encodeName(name(number % distinctPictures));
            if (!QFile::exists(name(number))
                && link(original.constData(), QFile::encodeName(name(number)).constData()) != 0) {
                qFatal("cannot link %s", qPrintable(name(number)));
            }
        }
    }

    QString name(int number) const
    {
        return m_folder
            + u"/wallpaper_%1.%2"_s.arg(number, 5, 10, QLatin1Char('0')).arg(m_extension);
    }

private:
    QString m_folder;
    QString m_extension;
};

/// Milliseconds from asking for the window until its first frame is on screen.
double openingMilliseconds(Stage &stage)
{
    QElapsedTimer timer;
    timer.start();
    stage.windows().showMainWindow();
    QQuickWindow *window = stage.mainWindow();
    double opened = 0;
    QObject::connect(window, &QQuickWindow::frameSwapped, window,
        [&] { opened = opened > 0 ? opened : double(timer.nsecsElapsed()) / 1e6; });
    if (!QTest::qWaitFor([&] { return opened > 0; }, 30000)) {
        qFatal("The window does not come");
    }
    QObject::disconnect(window, &QQuickWindow::frameSwapped, nullptr, nullptr);
    return opened;
}

void closeMain(Stage &stage)
{
    const QPointer<QQuickWindow> window = stage.mainWindow();
    window->close();
    if (!QTest::qWaitFor([&] { return window.isNull(); })) {
        qFatal("The window does not go");
    }
}

/// The shortest of some rounds; the first, which finds nothing loaded yet, does not count.
double bestOpening(Stage &stage)
{
    double best = 1e9;
    for (int round = 0; round <= rounds; ++round) {
        const double time = openingMilliseconds(stage);
        best = round > 0 ? std::min(best, time) : best;
        closeMain(stage);
    }
    return best;
}

QList<ui::Picture *> visiblePictures(QQuickWindow *window)
{
    QList<ui::Picture *> pictures;
    const auto shown = tiles(window);
    for (QQuickItem *tile : shown) {
        pictures << qobject_cast<ui::Picture *>(itemOfType(tile, "ui::Picture"));
    }
    return pictures;
}

void waitForPictures(QQuickWindow *window)
{
    const bool ready = QTest::qWaitFor(
        [window] {
            const auto pictures = visiblePictures(window);
            return !pictures.isEmpty()
                && std::all_of(pictures.begin(), pictures.end(), [](const ui::Picture *picture) {
                       return picture->status() == ui::Picture::Ready;
                   });
        },
        60000);
    if (!ready) {
        qFatal("The pictures do not come");
    }
}

/// Milliseconds of work for the slowest of the pictures, each in its best round.
double decodingMilliseconds(const Gallery &gallery, QSize box)
{
    double slowest = 0;
    for (int number = 0; number < distinctPictures; ++number) {
        double best = 1e9;
        for (int round = 0; round < rounds; ++round) {
            const std::atomic_bool stopped = false;
            const double before = worked();
            if (ui::readPicture(gallery.name(number), box, ui::Framing::Cover, stopped).isNull()) {
                qFatal("A picture cannot be read");
            }
            best = std::min(best, worked() - before);
        }
        slowest = std::max(slowest, best);
    }
    return slowest;
}

void waitForFrame(QQuickWindow *window)
{
    QEventLoop loop;
    QObject::connect(window, &QQuickWindow::frameSwapped, &loop, &QEventLoop::quit);
    window->requestUpdate();
    loop.exec();
}

/// From where it is to @p end, as fast as frames come, with rests at which the pictures appear.
void scrollTo(QQuickWindow *window, QQuickItem *grid, double end)
{
    constexpr double step = 400;
    constexpr int framesBetweenRests = 60;
    for (int frame = 1; grid->property("contentY").toDouble() != end; ++frame) {
        const double now = grid->property("contentY").toDouble();
        grid->setProperty(
            "contentY", now < end ? std::min(end, now + step) : std::max(end, now - step));
        waitForFrame(window);
        if (frame % framesBetweenRests == 0) {
            waitForPictures(window);
        }
    }
    waitForPictures(window);
}

void scrollDownAndUp(QQuickWindow *window)
{
    QQuickItem *grid = itemOfType(window->contentItem(), "QQuickGridView");
    const double top = grid->property("contentY").toDouble();
    scrollTo(window, grid, grid->property("contentHeight").toDouble() - grid->height());
    scrollTo(window, grid, top);
}

/// Megabytes of an empty main window at rest, what later ones are compared with.
double emptyWindowMegabytes(Stage &stage)
{
    openingMilliseconds(stage);
    waitForFrame(stage.mainWindow());
    const double memory = measure::residentMegabytes();
    closeMain(stage);
    return memory;
}

void measureMany(
    Stage &stage, const QString &extension, double decodingBudget, TimedApplication &application)
{
    Gallery gallery(stage.imageFolder(), extension);
    gallery.growTo(1000);
    std::printf("%s: files of %.1f MB\n", qPrintable(extension.toUpper()),
        double(QFileInfo(gallery.name(0)).size()) / 1e6);
    const double empty = emptyWindowMegabytes(stage);
    stage.manager().reloadHistory();
    const std::string name = extension.toUpper().toStdString();
    const auto line = [&name](const char *what) { return name + what; };

    measure::expectAtMost(line(": window on screen, ms").c_str(), bestOpening(stage), 150);

    openingMilliseconds(stage);
    QQuickWindow *window = stage.mainWindow();
    application.takeLongest();
    QElapsedTimer timer;
    timer.start();
    waitForPictures(window);
    const auto pictures = visiblePictures(window);
    std::printf("%s: %d tiles appeared in %.0f ms\n", name.c_str(), int(pictures.size()),
        double(timer.nsecsElapsed()) / 1e6);
    const double tilesMemory = measure::residentMegabytes() - empty;
    const double decoding = decodingMilliseconds(gallery, pictures.first()->box().toSize());
    measure::expectAtMost(line(": decoding of one tile, ms").c_str(), decoding, decodingBudget);
    measure::expectAtMost(
        line(": memory per visible tile, MB").c_str(), tilesMemory / double(pictures.size()), 0.5);

    double block = 1e9;
    QList<double> memory;
    for (int round = 0; round < 2; ++round) {
        application.takeLongest();
        scrollDownAndUp(window);
        block = std::min(block, application.takeLongest());
        memory << measure::residentMegabytes();
    }
    measure::expectAtMost(
        line(": longest block while scrolling, decodes").c_str(), block / decoding, 1.2);
    measure::expectAtMost(
        line(": memory grown by scrolling again, MB").c_str(), memory.last() - memory.first(), 2);
    closeMain(stage);
}

double listingMilliseconds()
{
    double best = 1e9;
    for (int round = 0; round < rounds; ++round) {
        best = std::min(best, 1000 * measure::seconds([] { storage::ImageStore::allImages(); }));
    }
    return best;
}

/// Listing the folder anew and opening the window over it.
double bestFreshOpening(Stage &stage)
{
    double best = 1e9;
    for (int round = 0; round < rounds; ++round) {
        const double listing = 1000 * measure::seconds([&] { stage.manager().reloadHistory(); });
        best = std::min(best, listing + openingMilliseconds(stage));
        closeMain(stage);
    }
    return best;
}

void measureGrowth(Stage &stage)
{
    Gallery gallery(stage.imageFolder(), u"jpg"_s);
    gallery.growTo(1000);
    bestFreshOpening(stage);
    const double few = bestFreshOpening(stage);
    const double fewListed = listingMilliseconds();
    gallery.growTo(10000);
    const double many = bestFreshOpening(stage);
    const double manyListed = listingMilliseconds();
    std::printf("1000 pictures: listed in %.1f ms, listed and opened in %.0f ms\n", fewListed, few);
    std::printf(
        "10000 pictures: listed in %.1f ms, listed and opened in %.0f ms\n", manyListed, many);
    measure::expectAtMost(
        "10000 pictures: growth, listings", (many - few) / (manyListed - fewListed), 1.5);
}

} // namespace

int main(int argc, char *argv[])
{
    TimedApplication application(argc, argv);
    std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ); // It takes minutes.
    std::printf("Copying 25 MB takes %.1f ms here; best of %d rounds.\n",
        1000 * std::min({measure::copySeconds(), measure::copySeconds(), measure::copySeconds()}),
        rounds);
    {
        Stage stage;
        measureGrowth(stage);
    }
    {
        Stage stage;
        measureMany(stage, u"jpg"_s, 25, application);
    }
    {
        Stage stage;
        measureMany(stage, u"png"_s, 160, application);
    }
    return measure::verdict();
}
