#pragma once

#include <QByteArray>
#include <QString>

/// Answers as the services send them, shortened, and one line for what came of them.
namespace canned {

using namespace Qt::StringLiterals;

/// JSON written with single quotes: moc loses its way in raw strings with an odd number of quotes.
inline QByteArray operator""_json(const char *text, size_t size)
{
    return QByteArray(text, qsizetype(size)).replace('\'', '"');
}

/// "Man", in base64.
inline const QByteArray base64 = "TWFu"_ba;

/// As Gemini and the upscaler are answered.
inline QByteArray candidates(const QByteArray &parts)
{
    return "{'candidates':[{'content':{'role':'model','parts':"_json + parts
        + "},'finishReason':'STOP','index':0}],'usageMetadata':{'promptTokenCount':9},"
          "'modelVersion':'gemini-2.5-flash-image','responseId':'x1'}"_json;
}

inline QByteArray inlineData(const QByteArray &mimeType = "image/png"_ba)
{
    return "{'inlineData':{'mimeType':'"_json + mimeType + "','data':'"_json + base64
        + "'},'thoughtSignature':'CtQB'}"_json;
}

/// As xAI and OpenAI answer.
inline QByteArray data(const QByteArray &elements)
{
    return "{'created':1760000000,'data':"_json + elements + ",'usage':{'total_tokens':6220}}"_json;
}

inline QByteArray image(const QByteArray &text = base64)
{
    return "{'b64_json':'"_json + text + "'}"_json;
}

/// The image and its extension, or the error as people read it.
template <typename Result>
QString outcome(const Result &result)
{
    return result ? QString::fromLatin1(result->bytes) + u'.' + result->extension
                  : result.error().errorDescription();
}

} // namespace canned
