#include "measure.h"

#include <QElapsedTimer>
#include <QFile>
#include <QRandomGenerator>

#include <malloc.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstring>

namespace measure {

namespace {

bool allMet = true;
std::atomic<qint64> diskNanoseconds = 0;

int waitForDisk(long systemCall, int file)
{
    QElapsedTimer timer;
    timer.start();
    const int result = int(syscall(systemCall, file));
    diskNanoseconds += timer.nsecsElapsed();
    return result;
}

/// A line of /proc/self/status that is given in kB, in bytes.
double statusBytes(const QByteArray &field)
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (status.open(QFile::ReadOnly)) {
        for (const QByteArray &line : status.readAll().split('\n')) {
            if (line.startsWith(field + ':')) {
                return line.mid(field.size() + 1).trimmed().split(' ').first().toDouble() * 1024;
            }
        }
    }
    qFatal("No %s in /proc/self/status", field.constData());
}

void forgetPeak()
{
    QFile references(QStringLiteral("/proc/self/clear_refs"));
    if (!references.open(QFile::WriteOnly | QFile::Unbuffered) || references.write("5") != 1) {
        qFatal("The peak of the memory cannot be reset");
    }
}

void report(const char *what, double measured, const char *relation, double budget, bool met)
{
    std::printf(
        "%-44s %8.2f  (%s %g)%s\n", what, measured, relation, budget, met ? "" : "  MISSED");
    allMet = allMet && met;
}

} // namespace

} // namespace measure

// In the place of the system library's own, for everything in this program, so that the time is
// seen.
extern "C" int fsync(int file)
{
    return measure::waitForDisk(SYS_fsync, file);
}

extern "C" int fdatasync(int file)
{
    return measure::waitForDisk(SYS_fdatasync, file);
}

namespace measure {

QByteArray image()
{
    QByteArray bytes(imageSize, Qt::Uninitialized);
    QRandomGenerator random(25);
    std::generate(bytes.begin(), bytes.end(), [&] { return char(random.generate()); });
    return bytes;
}

void useFreshMemory()
{
    constexpr int threshold = 128 * 1024;
    // NOLINTBEGIN(concurrency-mt-unsafe): there is no other thread yet.
    mallopt(M_MMAP_THRESHOLD, threshold);
    mallopt(M_TRIM_THRESHOLD, threshold);
    // NOLINTEND(concurrency-mt-unsafe)
}

double seconds(const std::function<void()> &work)
{
    QElapsedTimer timer;
    timer.start();
    work();
    return double(timer.nsecsElapsed()) / 1e9;
}

double ownSeconds(const std::function<void()> &work)
{
    const auto own = [] {
        timespec worked{};
        clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &worked);
        return double(worked.tv_sec) + double(worked.tv_nsec + diskNanoseconds) / 1e9;
    };
    const double before = own();
    work();
    return own() - before;
}

double copySeconds()
{
    static const QByteArray source = image();
    void *memory = nullptr;
    const double result = seconds([&] {
        memory
            = mmap(nullptr, imageSize, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        std::memcpy(memory, source.constData(), imageSize);
    });
    munmap(memory, imageSize);
    return result;
}

double timeInC(
    const std::function<QByteArray()> &prepare, const std::function<void(QByteArray &&)> &work)
{
    constexpr int rounds = 31;
    QList<double> ratios;
    for (int round = 0; round < rounds; ++round) {
        QByteArray argument = prepare();
        const double copy = copySeconds();
        ratios += seconds([&] { work(std::move(argument)); }) / copy;
    }
    return median(ratios);
}

double peakInImages(const std::function<void()> &work)
{
    malloc_trim(0);
    forgetPeak();
    const double before = statusBytes("VmRSS");
    work();
    return std::max(0.0, statusBytes("VmHWM") - before) / imageSize;
}

double residentMegabytes()
{
    return statusBytes("VmRSS") / (1024 * 1024);
}

double median(QList<double> values)
{
    std::sort(values.begin(), values.end());
    return values.at(values.size() / 2);
}

void tell(const char *what, double measured)
{
    std::printf("%-44s %8.2f\n", what, measured);
}

void expectAtMost(const char *what, double measured, double budget)
{
    report(what, measured, "at most", budget, measured <= budget);
}

void expectAtLeast(const char *what, double measured, double budget)
{
    report(what, measured, "at least", budget, measured >= budget);
}

int verdict()
{
    return allMet ? 0 : 1;
}

} // namespace measure
