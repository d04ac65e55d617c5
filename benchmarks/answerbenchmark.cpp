// From the largest answer of a service, 33 MB of JSON, to its image of 25 MB.

#include "measure.h"
#include "providers/answerreader.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryFile>

#include <cstdio>

using namespace Qt::StringLiterals;
using providers::AnswerFormat;

namespace {

constexpr AnswerFormat format{
    .image = AnswerFormat::Image::InCandidates, .extension = providers::extensionForMimeType};

/// What the exchange has to spare behind the end of an answer.
constexpr qsizetype room = 16384;

QByteArray answer(const QByteArray &image)
{
    QByteArray body;
    body.reserve(image.size() / 3 * 4 + room);
    body
        += R"({"candidates":[{"content":{"role":"model","parts":[{"text":"Here is your picture."},)"
           R"({"inlineData":{"mimeType":"image/png","data":")";
    body += image.toBase64();
    body += R"("}}]},"finishReason":"STOP","index":0}],"usageMetadata":{"totalTokenCount":1299}})";
    return body;
}

QByteArray copyWithRoom(const QByteArray &body)
{
    QByteArray copy;
    copy.reserve(body.size() + room);
    return copy += body;
}

QByteArray viaQt(const QByteArray &body)
{
    const QJsonDocument document = QJsonDocument::fromJson(body);
    const QJsonValue parts = document["candidates"_L1][0]["content"_L1]["parts"_L1];
    const QByteArray text = parts[1]["inlineData"_L1]["data"_L1].toString().toLatin1();
    return *QByteArray::fromBase64Encoding(
        text, QByteArray::Base64Encoding | QByteArray::AbortOnBase64DecodingErrors);
}

/// In C; measured by Python itself, without its start and without reading the file.
double pythonInC(const QByteArray &body)
{
    QTemporaryFile file;
    if (!file.open() || file.write(body) != body.size() || !file.flush()) {
        return 0;
    }
    const QString script = u"import base64, json, statistics, sys, time\n"
                           "body = open(sys.argv[1], 'rb').read()\n"
                           "def once():\n"
                           "    start = time.perf_counter()\n"
                           "    parts = json.loads(body)['candidates'][0]['content']['parts']\n"
                           "    base64.b64decode(parts[1]['inlineData']['data'])\n"
                           "    return time.perf_counter() - start\n"
                           "print(statistics.median(once() for _ in range(5)))"_s;
    QProcess python;
    python.start(u"python3"_s, {u"-c"_s, script, file.fileName()});
    python.waitForFinished(-1);
    const double copy
        = measure::median({measure::copySeconds(), measure::copySeconds(), measure::copySeconds()});
    return python.readAllStandardOutput().trimmed().toDouble() / copy;
}

} // namespace

int main()
{
    measure::useFreshMemory();
    const QByteArray image = measure::image();
    const QByteArray body = answer(image);
    if (providers::readAnswer(body, format)->bytes != image || viaQt(body) != image) {
        std::fprintf(stderr, "The image is not what it was\n");
        return 2;
    }

    const auto read = [](QByteArray &&argument) {
        const auto result = providers::readAnswer(std::move(argument), format);
    };
    const double ours = measure::timeInC([&] { return copyWithRoom(body); }, read);
    const double qt = measure::timeInC(
        [&] { return copyWithRoom(body); }, [](QByteArray &&argument) { viaQt(argument); });
    QByteArray argument = copyWithRoom(body);
    const double memory = measure::peakInImages([&] { read(std::move(argument)); });

    measure::expectAtMost("time, in copies of the image", ours, 2);
    measure::expectAtMost("extra memory at the peak, in images", memory, 1);
    measure::expectAtLeast("times as fast as QJsonDocument and QByteArray", qt / ours, 10);
    measure::expectAtLeast("times as fast as Python", pythonInC(body) / ours, 1);
    return measure::verdict();
}
