#include "desktop/swaybgdesktop.h"

#include "desktop/buscall.h"
#include "desktop/pngcopy.h"
#include "desktop/waylandglobals.h"
#include "desktop/workerthread.h"

#include <QCoroFuture>

namespace desktop {

using namespace Qt::StringLiterals;

namespace {

struct Background
{
    QString output;
    QString file;
};

tl::expected<Background, QString> prepare(const Picture &picture, const Screen &screen)
{
    const tl::expected<QString, QString> file = fileEveryDesktopReads(picture);
    if (!file) {
        return tl::make_unexpected(file.error());
    }
    const auto globals = askWaylandGlobals(QDeadlineTimer(answerTime));
    if (!globals) {
        return tl::make_unexpected(u"The desktop cannot be reached"_s);
    }
    // swaybg would wait for an output that is not there.
    const auto output = SwaybgDesktop::outputName(globals->outputs, screen.name);
    if (!output) {
        return tl::make_unexpected(u"The desktop has no screen named %1"_s.arg(screen.name));
    }
    return Background{*output, *file};
}

} // namespace

SwaybgDesktop::SwaybgDesktop(std::shared_ptr<BackgroundProcesses> processes)
    : m_processes(std::move(processes))
{
}

std::optional<QString> SwaybgDesktop::outputName(const QStringList &outputs, const QString &screen)
{
    // Old compositors tell no names.
    if (outputs.isEmpty() || outputs.contains(screen)) {
        return screen;
    }
    return outputs.size() == 1 ? std::optional(outputs.first()) : std::nullopt;
}

QCoro::Task<SetResult> SwaybgDesktop::setPicture(Picture picture, Screen screen)
{
    const QFuture<tl::expected<Background, QString>> preparing
        = onWorkerThread([picture, screen] { return prepare(picture, screen); });
    const tl::expected<Background, QString> background = co_await preparing;
    if (!background) {
        co_return tl::make_unexpected(background.error());
    }
    co_return co_await m_processes->show(background->output, background->file);
}

} // namespace desktop
