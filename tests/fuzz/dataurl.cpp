#include "input.h"
#include "naivebase64.h"
#include "providers/grokprovider.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace {

/// The base64 of a text that may be a data URL.
QByteArray withoutPrefix(const QByteArray &text)
{
    const qsizetype comma = text.indexOf(',');
    return text.left(comma < 0 ? 0 : comma).contains("base64") ? text.sliced(comma + 1) : text;
}

} // namespace

/// The image's text in an answer that is otherwise in order.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString text = QString::fromUtf8(fuzzing::bytes(data, size));
    const QByteArray answer
        = QJsonDocument(QJsonObject{{u"data"_s, QJsonArray{QJsonObject{{u"b64_json"_s, text}}}}})
              .toJson(QJsonDocument::Compact);
    const QByteArray base64 = withoutPrefix(text.toUtf8());
    const auto expected = fuzzing::decodeNaively({base64.constData(), size_t(base64.size())});
    const auto result = providers::GrokProvider::readAnswer(answer);
    fuzzing::require(result.has_value() == expected.has_value());
    fuzzing::require(!result || result->bytes == *expected);
    return 0;
}
