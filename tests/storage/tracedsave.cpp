#include "tracedsave.h"

#include <QHash>

#include <algorithm>
#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace {

/// The lines of a trace, and between which of them the save stands.
struct Log
{
    QList<QByteArray> lines;
    qsizetype begin;
    qsizetype end;

    bool isOfTheSave(qsizetype index) const;
};

/// Memory is mapped for its own sake here, and the sanitizers probe it by pipes.
bool isAboutFiles(const QByteArray &line)
{
    return line.contains('(') && nameOf(line) != "mmap" && !line.contains("<pipe:");
}

bool Log::isOfTheSave(qsizetype index) const
{
    return index > begin && index < end && isAboutFiles(lines[index]);
}

qsizetype lineWith(const QList<QByteArray> &lines, const char *text)
{
    const auto found = std::find_if(
        lines.begin(), lines.end(), [text](const QByteArray &line) { return line.contains(text); });
    return found - lines.begin();
}

/// A save that was killed has no end.
Log readLog(const Home &home)
{
    const QList<QByteArray> lines = contents(home.path() + "/trace"_L1).split('\n');
    return {lines, lineWith(lines, "/the save begins"), lineWith(lines, "/the save ends")};
}

} // namespace

Trace traced(const Home &home, const QStringList &command, const QStringList &options, mode_t mask)
{
    QProcess strace;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    // The leak checker is a tracer itself, and there can be only one.
    environment.insert(u"ASAN_OPTIONS"_s, u"detect_leaks=0"_s);
    strace.setProcessEnvironment(environment);
    strace.setChildProcessModifier([mask] { ::umask(mask); });
    strace.start(u"strace"_s,
        QStringList({u"-y"_s, u"-s"_s, u"4096"_s, u"-o"_s, home.path() + "/trace"_L1, u"-e"_s,
            u"trace=%file,%desc"_s})
            + options + command);
    Trace trace;
    if (!strace.waitForFinished()) {
        trace.errors = strace.errorString().toLocal8Bit();
        return trace;
    }
    trace.end = strace.exitStatus();
    trace.exitCode = strace.exitCode();
    trace.output = strace.readAllStandardOutput();
    trace.errors = strace.readAllStandardError();
    const Log log = readLog(home);
    for (qsizetype index = 0; index < log.lines.size(); ++index) {
        if (log.isOfTheSave(index)) {
            trace.save.append(log.lines[index]);
        }
        trace.isInjected = trace.isInjected || log.lines[index].contains("(INJECTED)");
    }
    return trace;
}

QList<Call> callsOf(const Home &home, const QStringList &command)
{
    traced(home, command, {});
    const Log log = readLog(home);
    QHash<QByteArray, int> numbers;
    QList<Call> calls;
    for (qsizetype index = 0; index < log.lines.size(); ++index) {
        const QByteArray name = nameOf(log.lines[index]);
        const int number = ++numbers[name];
        if (log.isOfTheSave(index)) {
            calls.append({name, number});
        }
    }
    return calls;
}

QStringList inject(const Call &call, const QByteArray &what, const QByteArray &repeat)
{
    return {u"-e"_s,
        QString::fromLatin1("inject=" + call.name + ':' + what
            + ":when=" + QByteArray::number(call.number) + repeat)};
}

QByteArray nameOf(const QByteArray &line)
{
    return line.left(line.indexOf('('));
}

bool makesAFile(const QByteArray &line)
{
    return nameOf(line) == "creat" || line.contains("O_CREAT") || line.contains("O_TMPFILE");
}

bool setsPermissions(const QByteArray &line)
{
    return nameOf(line).contains("chmod");
}

int modeOf(const QByteArray &line)
{
    // The last octal number of the call.
    const QByteArray arguments = line.left(line.lastIndexOf(") = "));
    return arguments.mid(arguments.lastIndexOf(", ") + 2).toInt(nullptr, 8);
}

qsizetype indexOf(const Trace &trace, const QByteArray &name, const QByteArray &text)
{
    const auto found = std::find_if(trace.save.begin(), trace.save.end(),
        [&](const QByteArray &line) { return nameOf(line) == name && line.contains(text); });
    return found == trace.save.end() ? -1 : found - trace.save.begin();
}
