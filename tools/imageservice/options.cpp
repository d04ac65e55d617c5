#include "imageservice/options.h"

#include "imageservice/behaviours.h"

#include <QCommandLineParser>

using namespace Qt::StringLiterals;

namespace imageservice {

namespace {

const QString Help = u"help"_s;
const QString Port = u"port"_s;
const QString Record = u"record"_s;
const QString Paint = u"paint"_s;
const QString Model = u"model"_s;
const QString Size = u"size"_s;
const QString DefaultPort = QString::number(PLENAURA_DEMO_PORT);

void declare(QCommandLineParser &parser)
{
    parser.setApplicationDescription(
        u"Stands in for the Gemini, Grok and OpenAI image services on 127.0.0.1 and paints what\n"
        "they are asked for. With --paint it writes one picture to a file instead."_s);
    parser.addOptions({{{u"h"_s, Help}, u"Show this text."_s},
        {Port, u"Port to listen on; 0 takes any free one. Default: "_s + DefaultPort + u'.', u"N"_s,
            DefaultPort},
        {Record,
            u"Write each request into a JSON file in <DIR>, with its key: this is a tool for\n"
            "tests, never give it a real one."_s,
            u"DIR"_s},
        {Paint, u"Paint <PROMPT> into the file <out>, as PNG or JPEG by its name."_s, u"PROMPT"_s},
        {Model, u"Paint as <NAME> would; each model paints differently."_s, u"NAME"_s},
        {Size, u"Size of the painting. Default: 3840x2160."_s, u"WxH"_s, u"3840x2160"_s}});
    parser.addPositionalArgument(u"out"_s, u"File to paint into."_s, u"[out]"_s);
}

QSize sizeIn(const QString &text)
{
    const auto sides = text.split(u'x');
    const QSize size(sides.value(0).toInt(), sides.value(1).toInt());
    const bool fits = sides.size() == 2 && size.expandedTo({16, 16}) == size
        && size.boundedTo({3840, 3840}) == size;
    return fits ? size : QSize();
}

tl::expected<Options, QString> paintOptions(const QCommandLineParser &parser)
{
    Options options{.task = Options::Task::Paint,
        .prompt = parser.value(Paint),
        .model = parser.value(Model),
        .size = sizeIn(parser.value(Size)),
        .file = parser.positionalArguments().value(0)};
    if (options.size.isEmpty()) {
        return tl::unexpected(u"The size is to be like 1536x1024, each side from 16 to 3840."_s);
    }
    if (parser.positionalArguments().size() != 1) {
        return tl::unexpected(u"Name one file to paint into."_s);
    }
    return options;
}

} // namespace

tl::expected<Options, QString> parsedOptions(const QStringList &arguments)
{
    QCommandLineParser parser;
    declare(parser);
    if (!parser.parse(arguments)) {
        return tl::unexpected(parser.errorText());
    }
    if (parser.isSet(Help)) {
        return Options{.task = Options::Task::Help};
    }
    if (parser.isSet(Paint)) {
        return paintOptions(parser);
    }
    bool isPort = false;
    const quint16 port = parser.value(Port).toUShort(&isPort);
    if (!isPort) {
        return tl::unexpected(u"The port is to be a number from 0 to 65535."_s);
    }
    if (!parser.positionalArguments().isEmpty()) {
        return tl::unexpected(
            u"Unexpected argument: "_s + parser.positionalArguments().constFirst());
    }
    return Options{.port = port, .recordDirectory = parser.value(Record)};
}

QString helpText()
{
    QCommandLineParser parser;
    declare(parser);
    return parser.helpText() + u"\nAny key works. These keys choose other answers:\n"_s
        + behavioursHelp();
}

} // namespace imageservice
