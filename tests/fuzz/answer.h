#pragma once

#include "input.h"
#include "providers/imageprovider.h"

#include <QJsonDocument>
#include <QRegularExpression>

namespace fuzzing {

/// Whether Qt's parser takes it for a JSON object. A number that is too near zero for a double is
/// none to it, while JSON knows no bound, so it may also be one without its negative exponents.
inline bool isObject(const QByteArray &text)
{
    if (QJsonDocument::fromJson(text).isObject()) {
        return true;
    }
    // Each byte a character, so that none is lost on the way.
    static const QRegularExpression negativeExponent(QStringLiteral("[eE]-[0-9]+"));
    const QString without = QString::fromLatin1(text).remove(negativeExponent);
    return QJsonDocument::fromJson(without.toLatin1()).isObject();
}

/// What holds of every reader of answers, whatever the answer is.
inline void checkAnswer(providers::ImageResult (*readAnswer)(QByteArray), const QByteArray &answer)
{
    const QByteArray body(answer.constData(), answer.size());
    const providers::ImageResult result = readAnswer(body);
    require(body == answer); // Whoever else holds the body still has it.
    if (result) {
        require(result->extension == u"png" || result->extension == u"jpg");
        require(result->bytes.size() <= answer.size() / 4 * 3);
        require(isObject(answer));
    } else {
        require(!result.error().errorDescription().isEmpty());
    }
    require(readAnswer(QByteArray(answer.constData(), answer.size())) == result);
}

} // namespace fuzzing
