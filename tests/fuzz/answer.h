#pragma once

#include "input.h"
#include "providers/imageprovider.h"

#include <QJsonDocument>

namespace fuzzing {

/// What holds of every reader of answers, whatever the answer is.
inline void checkAnswer(providers::ImageResult (*readAnswer)(QByteArray), const QByteArray &answer)
{
    const QByteArray body(answer.constData(), answer.size());
    const providers::ImageResult result = readAnswer(body);
    require(body == answer); // Whoever else holds the body still has it.
    if (result) {
        require(result->extension == u"png" || result->extension == u"jpg");
        require(result->bytes.size() <= answer.size() / 4 * 3);
        require(QJsonDocument::fromJson(answer).isObject());
    } else {
        require(!result.error().errorDescription().isEmpty());
    }
    require(readAnswer(QByteArray(answer.constData(), answer.size())) == result);
}

} // namespace fuzzing
