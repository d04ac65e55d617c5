#include "imageservice/httpserver.h"
#include "imageservice/imageservice.h"
#include "imageservice/options.h"
#include "imageservice/painting/painter.h"

#include <QCoreApplication>
#include <QImageWriter>

#include <cstdio>

using namespace Qt::StringLiterals;
using namespace imageservice;

namespace {

void print(std::FILE *stream, const QString &text)
{
    std::fputs(qPrintable(text), stream);
    std::fflush(stream);
}

int failed(const QString &reason)
{
    print(stderr, u"imageservice: "_s + reason + u'\n');
    return 1;
}

int paint(const Options &options)
{
    QImageWriter writer(options.file);
    // To PNG a high quality would mean no compression.
    if (options.file.endsWith(u".png", Qt::CaseInsensitive)) {
        writer.setCompression(50);
    } else {
        writer.setQuality(94);
    }
    const QImage image = painted(sceneFor(options.prompt, options.model), options.size);
    return writer.write(image) ? 0 : failed(options.file + u": "_s + writer.errorString());
}

int serve(const Options &options)
{
    std::optional<Recorder> recorder;
    if (!options.recordDirectory.isEmpty()) {
        recorder = Recorder::open(options.recordDirectory);
        if (!recorder) {
            return failed(options.recordDirectory + u": cannot be used as a directory"_s);
        }
    }
    ImageService service(std::move(recorder));
    HttpServer server([&service](const HttpRequest &request) { return service.handle(request); });
    if (!server.listen(options.port)) {
        return failed(
            u"cannot listen on 127.0.0.1:%1: %2"_s.arg(options.port).arg(server.errorString()));
    }
    print(stdout, u"listening on http://127.0.0.1:%1\n"_s.arg(server.port()));
    return QCoreApplication::exec();
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const auto options = parsedOptions(QCoreApplication::arguments());
    if (!options) {
        return failed(options.error());
    }
    switch (options->task) {
    case Options::Task::Help:
        print(stdout, helpText());
        return 0;
    case Options::Task::Paint:
        return paint(*options);
    case Options::Task::Serve:
        return serve(*options);
    }
}
