// From an image of 25 MB to the body of the request that has it drawn larger.

#include "measure.h"
#include "providers/upscaler.h"

#include <QJsonDocument>

#include <cstdio>

using namespace Qt::StringLiterals;

int main()
{
    measure::useFreshMemory();
    const QByteArray image = measure::image();
    const auto document
        = QJsonDocument::fromJson(providers::Upscaler::requestBody(image, u"png"_s));
    const QString text
        = document["contents"_L1][0]["parts"_L1][1]["inlineData"_L1]["data"_L1].toString();
    if (QByteArray::fromBase64(text.toLatin1()) != image) {
        std::fprintf(stderr, "The image is not what it was\n");
        return 2;
    }

    const auto write = [](const QByteArray &argument) {
        const QByteArray body = providers::Upscaler::requestBody(argument, u"png"_s);
    };
    measure::expectAtMost("time, in copies of the image",
        measure::timeInC([&] { return QByteArray(image); }, write), 2.5);
    measure::expectAtMost(
        "extra memory at the peak, in images", measure::peakInImages([&] { write(image); }), 1.4);
    return measure::verdict();
}
