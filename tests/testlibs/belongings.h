#pragma once

#include <QDir>
#include <QFile>

#include <malloc.h>

#include <optional>

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

/// The most memory that this process has in use from its construction on, beyond what it had then.
class PeakMemory
{
public:
    PeakMemory()
    {
        malloc_trim(0);
        QFile forget(QStringLiteral("/proc/self/clear_refs"));
        m_isKnown = forget.open(QIODevice::WriteOnly) && forget.write("5") == 1;
        m_before = bytesOf("VmRSS:");
    }

    /// Absent means that the system does not tell.
    std::optional<qint64> growth() const
    {
        const qint64 peak = bytesOf("VmHWM:");
        return m_isKnown && peak > 0 ? std::optional(peak - m_before) : std::nullopt;
    }

private:
    static qint64 bytesOf(const QByteArray &name)
    {
        QFile status(QStringLiteral("/proc/self/status"));
        if (status.open(QIODevice::ReadOnly)) {
            for (const QByteArray &line : status.readAll().split('\n')) {
                if (line.startsWith(name)) {
                    return line.mid(name.size()).simplified().split(' ').first().toLongLong()
                        * 1024;
                }
            }
        }
        return 0;
    }

    bool m_isKnown = false;
    qint64 m_before = 0;
};

/// How often a soak test goes round: as PLENAURA_SOAK_CYCLES says.
inline int soakCycles(int normally)
{
    bool given = false;
    const int count = qEnvironmentVariableIntValue("PLENAURA_SOAK_CYCLES", &given);
    return given ? count : normally;
}

} // namespace testlibs
