#pragma once

#include "cannedanswers.h"
#include "providers/answerreader.h"

/// What another JSON reader makes of an answer, to be compared with what ours does.
namespace canned {

constexpr providers::AnswerFormat inData{
    .image = providers::AnswerFormat::Image::InData, .extension = providers::extensionForMimeType};
constexpr providers::AnswerFormat inCandidates{
    .image = providers::AnswerFormat::Image::InCandidates,
    .extension = providers::extensionForMimeType};

const QString unreadable = u"Invalid response: Failed to parse response"_s;
const QString noImage = u"Invalid response: No image in response"_s;

/// As outcome() tells it, of an answer that may hold its image in data.
QString outcomeByQt(const QByteArray &body);

} // namespace canned
