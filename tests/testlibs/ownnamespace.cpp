#include "testlibs/ownnamespace.h"

#include <QByteArray>

#include <cerrno>
#include <fcntl.h>
#include <sched.h>
#include <unistd.h>

namespace testlibs {

namespace {

bool tell(const char *file, const QByteArray &text)
{
    const int descriptor = ::open(file, O_WRONLY | O_CLOEXEC);
    const bool told = ::write(descriptor, text.constData(), size_t(text.size())) == text.size();
    ::close(descriptor);
    return told;
}

/// Makes an ordinary user the root of a namespace of users, who may have others.
bool enterAsRootOfOwnUsers(int kind)
{
    const QByteArray user = QByteArray::number(::getuid());
    const QByteArray group = QByteArray::number(::getgid());
    return ::unshare(CLONE_NEWUSER | kind) == 0 && tell("/proc/self/setgroups", "deny")
        && tell("/proc/self/uid_map", "0 " + user + " 1")
        && tell("/proc/self/gid_map", "0 " + group + " 1");
}

} // namespace

QString enterOwnNamespace(int kind)
{
    if (::unshare(kind) != 0 && !enterAsRootOfOwnUsers(kind)) {
        return QLatin1StringView("Neither root's nor a user's own namespaces are allowed here: ")
            + qt_error_string(errno);
    }
    return {};
}

} // namespace testlibs
