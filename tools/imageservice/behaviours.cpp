#include "imageservice/behaviours.h"

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace imageservice {

namespace {

using Reply = Behaviour::Reply;
using ErrorBeside = Behaviour::ErrorBeside;

constexpr QByteArrayView UpscalePrefix = "upscale-";
constexpr QByteArrayView SlowPrefix = "slow-";

constexpr std::array Behaviours = {
    Behaviour{.key = "ok-png"_L1, .meaning = "the picture as PNG"_L1, .format = PictureFormat::Png},
    Behaviour{
        .key = "ok-jpeg"_L1, .meaning = "the picture as JPEG"_L1, .format = PictureFormat::Jpeg},
    Behaviour{.key = "text-then-image"_L1,
        .meaning = "words before the picture"_L1,
        .shape = Shape::TextThenImage},
    Behaviour{
        .key = "data-url"_L1, .meaning = "the picture as a data: URL"_L1, .shape = Shape::DataUrl},
    Behaviour{.key = "empty-data"_L1,
        .meaning = "an empty text (Gemini) or an empty \"data\" list"_L1,
        .shape = Shape::EmptyData},
    Behaviour{.key = "null-b64"_L1,
        .meaning = "null instead of the picture"_L1,
        .shape = Shape::NullData},
    Behaviour{.key = "bad-base64"_L1,
        .meaning = "a picture that does not decode"_L1,
        .shape = Shape::BadBase64},
    Behaviour{.key = "not-an-image"_L1,
        .meaning = "good base64 of something that is no picture"_L1,
        .isPicture = false},
    Behaviour{.key = "no-candidates"_L1,
        .meaning = "no list of pictures at all"_L1,
        .shape = Shape::NoCandidates},
    Behaviour{.key = "no-content"_L1,
        .meaning = "a list with an element that holds nothing"_L1,
        .shape = Shape::NoContent},
    Behaviour{
        .key = "text-only"_L1, .meaning = "words and no picture"_L1, .shape = Shape::TextOnly},
    Behaviour{.key = "inline-null"_L1,
        .meaning = "null first, the picture after it"_L1,
        .shape = Shape::NullThenImage},
    Behaviour{.key = "second-candidate"_L1,
        .meaning = "the picture in the second candidate only"_L1,
        .shape = Shape::SecondCandidate},
    Behaviour{.key = "blocked"_L1,
        .meaning = "the prompt is refused by moderation"_L1,
        .reply = Reply::Blocked},
    Behaviour{.key = "fail-400"_L1,
        .meaning = "error 400 as this service words it; so are the next ones"_L1,
        .reply = Reply::Error,
        .status = 400},
    Behaviour{
        .key = "fail-401"_L1, .meaning = "error 401"_L1, .reply = Reply::Error, .status = 401},
    Behaviour{
        .key = "fail-403"_L1, .meaning = "error 403"_L1, .reply = Reply::Error, .status = 403},
    Behaviour{
        .key = "fail-404"_L1, .meaning = "error 404"_L1, .reply = Reply::Error, .status = 404},
    Behaviour{.key = "fail-422"_L1,
        .meaning = "error 422, from Grok in plain text"_L1,
        .reply = Reply::Error,
        .status = 422},
    Behaviour{.key = "fail-429"_L1,
        .meaning = "error 429, from Gemini in several lines"_L1,
        .reply = Reply::Error,
        .status = 429},
    Behaviour{
        .key = "fail-500"_L1, .meaning = "error 500"_L1, .reply = Reply::Error, .status = 500},
    Behaviour{
        .key = "fail-503"_L1, .meaning = "error 503"_L1, .reply = Reply::Error, .status = 503},
    Behaviour{
        .key = "fail-504"_L1, .meaning = "error 504"_L1, .reply = Reply::Error, .status = 504},
    Behaviour{.key = "200-with-error"_L1,
        .meaning = "an error with HTTP status 200"_L1,
        .reply = Reply::Error,
        .status = 429,
        .sentStatus = 200},
    Behaviour{.key = "500-with-image"_L1,
        .meaning = "a good picture with HTTP status 500"_L1,
        .sentStatus = 500},
    Behaviour{.key = "error-and-image"_L1,
        .meaning = "an error object beside a good picture"_L1,
        .errorBeside = ErrorBeside::Object},
    Behaviour{.key = "error-string"_L1,
        .meaning = "an error text beside a good picture"_L1,
        .errorBeside = ErrorBeside::Text},
    Behaviour{.key = "json-array"_L1,
        .meaning = "the answer wrapped in an array"_L1,
        .reply = Reply::Array},
    Behaviour{.key = "html"_L1,
        .meaning = "the page of a gateway, status 502"_L1,
        .reply = Reply::Html,
        .status = 502},
    Behaviour{.key = "empty"_L1, .meaning = "an empty body"_L1, .reply = Reply::Nothing},
    Behaviour{
        .key = "big"_L1, .meaning = "a good picture in a body of 35 MB"_L1, .atLeast = 36'700'160},
    Behaviour{.key = "slow"_L1,
        .meaning = "a good picture after 3 seconds; slow-<ms> after so many milliseconds"_L1,
        .delay = 3s},
    Behaviour{.key = "silent"_L1, .meaning = "no answer, ever"_L1, .delivery = Delivery::Silent},
    Behaviour{.key = "cut"_L1,
        .meaning = "the connection ends in the middle of the body"_L1,
        .delivery = Delivery::Cut},
    Behaviour{.key = "reset"_L1,
        .meaning = "the connection breaks instead of an answer"_L1,
        .delivery = Delivery::Reset},
    Behaviour{.key = "upscale-fail"_L1,
        .meaning
        = "pictures, but error 503 for a request to upscale one; upscale-<key> does any of the above then"_L1,
        .reply = Reply::Error,
        .status = 503},
};

Behaviour listed(const QByteArray &key)
{
    const auto *found = std::ranges::find_if(
        Behaviours, [&](const Behaviour &entry) { return QLatin1StringView(key) == entry.key; });
    return found == Behaviours.end() ? Behaviour{} : *found;
}

} // namespace

Behaviour behaviourFor(const QByteArray &key, bool isUpscaling)
{
    if (key.startsWith(UpscalePrefix)) {
        const Behaviour special = listed(key);
        const QByteArray rest = key.sliced(UpscalePrefix.size());
        return !isUpscaling         ? Behaviour{}
            : special.key.isEmpty() ? behaviourFor(rest, false)
                                    : special;
    }
    if (key.startsWith(SlowPrefix)) {
        return {.delay = std::chrono::milliseconds(key.sliced(SlowPrefix.size()).toUInt())};
    }
    return listed(key);
}

QString behavioursHelp()
{
    QString text;
    for (const Behaviour &entry : Behaviours) {
        text += u"  "_s + QString(entry.key).leftJustified(18) + entry.meaning + u'\n';
    }
    return text;
}

} // namespace imageservice
