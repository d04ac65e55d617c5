#include "desktop/swaybgdesktop.h"

#include "desktop/buscall.h"
#include "desktop/output.h"
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

std::optional<QString> outputName(const std::vector<Screen> &outputs, const Screen &screen)
{
    if (outputs.empty()) {
        return screen.name;
    }
    const std::optional<Screen> output = outputOf(screen, outputs);
    return output ? std::optional(output->name) : std::nullopt;
}

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
    const std::optional<QString> output = outputName(globals->outputs, screen);
    if (!output) {
        return tl::make_unexpected(u"The screen is no longer there"_s);
    }
    return Background{*output, *file};
}

} // namespace

SwaybgDesktop::SwaybgDesktop(std::shared_ptr<BackgroundProcesses> processes)
    : m_processes(std::move(processes))
{
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
