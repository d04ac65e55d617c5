#pragma once

#include <QByteArray>

#include <functional>

/// Times and memory in units that hold on any machine, and the verdict on them.
namespace measure {

/// What all benchmarks of big data work on.
inline constexpr qsizetype imageSize = 25'000'000;

/// Bytes that neither repeat nor compress, like those of an encoded image.
QByteArray image();

/// Has every large block come fresh from the system, as in a program that needs one now and then.
/// Without this the allocator would hand the same warm block to each round.
void useFreshMemory();

/// Seconds that @p work takes, once.
double seconds(const std::function<void()> &work);

/// Seconds of processor that all threads of this program take for @p work, and seconds in which it
/// waits for the disk to have written what it wrote. Other programs' share of the machine is not in
/// it, nor what @p work waits for their answers.
double ownSeconds(const std::function<void()> &work);

/// Seconds to copy an image into fresh memory, once: the unit "C".
double copySeconds();

/// Median of 31 rounds of what @p work takes, in C measured in the same round. The argument of
/// @p work is made by @p prepare outside the measured time.
double timeInC(
    const std::function<QByteArray()> &prepare, const std::function<void(QByteArray &&)> &work);

/// Resident memory that @p work takes at its peak beyond what was there before, in images.
double peakInImages(const std::function<void()> &work);

/// Resident memory of this program, in MB.
double residentMegabytes();

double median(QList<double> values);

/// Prints one line that has no budget.
void tell(const char *what, double measured);

/// Prints one line and notes whether the budget is met.
void expectAtMost(const char *what, double measured, double budget);
void expectAtLeast(const char *what, double measured, double budget);

/// For main() to return.
int verdict();

} // namespace measure
