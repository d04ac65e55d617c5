#pragma once

#include <QtGlobal>

#include <csignal>
#include <sys/resource.h>

namespace testlibs {

/// As long as it lives, no file can grow beyond so many bytes, as on a disk without room.
class SmallFiles
{
public:
    explicit SmallFiles(rlim_t bytes)
    {
        ::signal(SIGXFSZ, SIG_IGN);
        ::getrlimit(RLIMIT_FSIZE, &m_before);
        set({bytes, m_before.rlim_max});
    }
    ~SmallFiles() { set(m_before); }
    Q_DISABLE_COPY_MOVE(SmallFiles)

private:
    static void set(const rlimit &limit)
    {
        if (::setrlimit(RLIMIT_FSIZE, &limit) != 0) {
            qFatal("The size of files cannot be limited.");
        }
    }

    rlimit m_before{};
};

} // namespace testlibs
