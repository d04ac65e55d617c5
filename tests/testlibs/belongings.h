#pragma once

#include <QDir>

#include <malloc.h>

namespace testlibs {

/// What a program that runs for months must not gather.
struct Belongings
{
    qsizetype heap; ///< Bytes in use.
    qsizetype files;
    qsizetype threads;

    static Belongings now()
    {
        return {.heap = qsizetype(mallinfo2().uordblks),
            .files = entries(QStringLiteral("/proc/self/fd")),
            .threads = entries(QStringLiteral("/proc/self/task"))};
    }

private:
    static qsizetype entries(const QString &folder)
    {
        return QDir(folder)
            .entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::System)
            .size();
    }
};

/// How often a soak test goes round: as PLENAURA_SOAK_CYCLES says.
inline int soakCycles(int normally)
{
    bool given = false;
    const int count = qEnvironmentVariableIntValue("PLENAURA_SOAK_CYCLES", &given);
    return given ? count : normally;
}

} // namespace testlibs
