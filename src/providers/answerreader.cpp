#include "providers/answerreader.h"

#include "providers/strictbase64.h"

#include <simdjson.h>

#include <optional>
#include <utility>

using namespace Qt::StringLiterals;

namespace providers {

namespace {

namespace json = simdjson::ondemand;

/// Visits every value of a document exactly once, because the parser judges only what is visited.
/// After the first flaw nothing is visited any more, and failed() says so.
class DocumentWalk
{
public:
    /// Levels of nesting that a document may have; the parser itself knows no bound.
    static constexpr int maximumDepth = 1024;

    bool failed() const { return m_failed; }

    /// Calls visit(key, value) for each field. A visitor must hand on each value to this class.
    template <typename Visit>
    void fields(json::object object, Visit visit)
    {
        const Level level(*this);
        for (auto next : object) {
            json::field field;
            std::string_view key;
            if (m_failed || !succeeds(std::move(next).get(field))
                || !succeeds(field.unescaped_key().get(key))) {
                return;
            }
            visit(key, field.value());
        }
    }

    /// fields() of a value; false if it is not an object, and then it is skipped.
    template <typename Visit>
    bool object(json::value value, Visit visit)
    {
        json::object object;
        if (type(value) != json::json_type::object) {
            skip(value);
            return false;
        }
        if (succeeds(value.get_object().get(object))) {
            fields(object, visit);
        }
        return true;
    }

    /// Calls read(value) for each field of that name and skips the others; false if it is not an
    /// object.
    template <typename Read>
    bool field(json::value value, std::string_view name, Read read)
    {
        return object(value, [&](std::string_view key, json::value field) {
            if (key == name) {
                read(field);
            } else {
                skip(field);
            }
        });
    }

    /// Calls visit(element) for each element; a value that is not an array is skipped.
    template <typename Visit>
    void elements(json::value value, Visit visit)
    {
        json::array array;
        if (type(value) != json::json_type::array) {
            skip(value);
            return;
        }
        const Level level(*this);
        if (m_failed || !succeeds(value.get_array().get(array))) {
            return;
        }
        for (auto next : array) {
            if (m_failed || !succeeds(next.error())) {
                return;
            }
            visit(next.value_unsafe());
        }
    }

    /// The text of a string, where it stands unless it has to be unescaped; nothing of another
    /// value.
    std::optional<std::string_view> text(json::value value)
    {
        if (type(value) != json::json_type::string) {
            skip(value);
            return {};
        }
        const std::string_view token = value.raw_json_token();
        std::string_view text = token.substr(1, token.rfind('"') - 1);
        if (text.find('\\') != std::string_view::npos) {
            succeeds(value.get_string().get(text));
        } else {
            succeeds(value.get_raw_json_string().error());
        }
        return text;
    }

    void skip(json::value value)
    {
        const auto kind = type(value);
        if (!kind) {
            return;
        }
        switch (*kind) {
        case json::json_type::object:
            object(value, [this](std::string_view /*key*/, json::value field) { skip(field); });
            break;
        case json::json_type::array:
            elements(value, [this](json::value element) { skip(element); });
            break;
        case json::json_type::string:
            text(value);
            break;
        case json::json_type::number: // As a double, because integers have no bound.
            succeeds(value.get_double().error());
            break;
        case json::json_type::boolean:
            succeeds(value.get_bool().error());
            break;
        case json::json_type::null:
            succeeds(value.is_null().error());
            break;
        }
    }

private:
    struct Level
    {
        explicit Level(DocumentWalk &walk) : m_walk(walk)
        {
            m_walk.m_failed |= ++m_walk.m_depth > maximumDepth;
        }
        Level(const Level &) = delete;
        Level &operator=(const Level &) = delete;
        ~Level() { --m_walk.m_depth; }

        DocumentWalk &m_walk;
    };

    bool succeeds(simdjson::error_code error)
    {
        m_failed |= error != simdjson::SUCCESS;
        return !m_failed;
    }

    std::optional<json::json_type> type(json::value value)
    {
        json::json_type type{};
        return !m_failed && succeeds(value.type().get(type)) ? std::optional(type) : std::nullopt;
    }

    int m_depth = 0;
    bool m_failed = false;
};

/// The text of an image, and the type that goes with it.
struct EncodedImage
{
    std::string_view text;
    std::string_view mimeType;
};

/// What there is to know about an answer. The texts stand in the body or in the parser.
struct Findings
{
    std::optional<std::string_view> error;
    std::optional<EncodedImage> image;
};

/// Collects the findings of one answer. Where a key stands twice, the last one counts.
class Reading
{
public:
    explicit Reading(AnswerFormat::Image place) : m_place(place) { }

    /// Nothing unless the document is an object without a flaw.
    std::optional<Findings> read(json::document &document)
    {
        json::object answer;
        if (document.get_object().get(answer) != simdjson::SUCCESS) {
            return {};
        }
        const bool inData = m_place == AnswerFormat::Image::InData;
        Findings findings;
        m_walk.fields(answer, [&](std::string_view key, json::value value) {
            if (key == "error") {
                findings.error = errorMessage(value);
            } else if (key == (inData ? "data" : "candidates")) {
                findings.image = inData ? dataImage(value) : candidateImage(value);
            } else {
                m_walk.skip(value);
            }
        });
        if (m_walk.failed() || document.current_location().error() != simdjson::OUT_OF_BOUNDS) {
            return {};
        }
        return findings;
    }

private:
    using Text = std::optional<std::string_view>;
    using Image = std::optional<EncodedImage>;

    /// An element of an array that should hold nothing but objects.
    struct Element
    {
        bool isObject = false;
        bool isChosen = false;
        Image image = {};
    };

    Text errorMessage(json::value value)
    {
        Text message;
        m_walk.field(value, "message", [&](json::value text) { message = m_walk.text(text); });
        return message;
    }

    /// The image of the first chosen element, provided that all elements are objects.
    template <typename Read>
    Image firstChosen(json::value array, Read read)
    {
        bool allObjects = true;
        std::optional<Element> chosen;
        m_walk.elements(array, [&](json::value value) {
            const Element element = read(value);
            allObjects = allObjects && element.isObject;
            if (!chosen && element.isChosen) {
                chosen = element;
            }
        });
        return allObjects && chosen ? chosen->image : std::nullopt;
    }

    Image dataImage(json::value value)
    {
        return firstChosen(value, [this](json::value item) {
            Element element{.isChosen = true};
            element.isObject = m_walk.field(item, "b64_json", [&](json::value image) {
                const Text text = m_walk.text(image);
                element.image = text ? Image(EncodedImage{*text, {}}) : std::nullopt;
            });
            return element;
        });
    }

    Image candidateImage(json::value value)
    {
        return firstChosen(value, [this](json::value candidate) {
            Element element{.isChosen = true};
            element.isObject = m_walk.field(candidate, "content",
                [&](json::value content) { element.image = contentImage(content); });
            return element;
        });
    }

    Image contentImage(json::value value)
    {
        Image image;
        m_walk.field(value, "parts", [&](json::value parts) { image = partsImage(parts); });
        return image;
    }

    Image partsImage(json::value value)
    {
        return firstChosen(value, [this](json::value part) {
            Element element;
            element.isObject = m_walk.field(part, "inlineData", [&](json::value data) {
                element.isChosen = true;
                element.image = inlineImage(data);
            });
            return element;
        });
    }

    Image inlineImage(json::value value)
    {
        Text data;
        Text mimeType;
        m_walk.object(value, [&](std::string_view key, json::value field) {
            if (key == "data") {
                data = m_walk.text(field);
            } else if (key == "mimeType") {
                mimeType = m_walk.text(field);
            } else {
                m_walk.skip(field);
            }
        });
        return data && mimeType ? Image(EncodedImage{*data, *mimeType}) : std::nullopt;
    }

    AnswerFormat::Image m_place;
    DocumentWalk m_walk;
};

/// The text of @p body, with the bytes behind it into which the parser looks.
simdjson::padded_string_view padded(QByteArray &body)
{
    constexpr qsizetype padding = simdjson::SIMDJSON_PADDING;
    body.append(padding, '\0');
    const qsizetype mark = body.startsWith("\xEF\xBB\xBF") ? 3 : 0;
    const std::string_view text(body.constData() + mark, body.size() - padding - mark);
    return simdjson::padded_string_view(text, text.size() + padding);
}

std::optional<Findings> findings(json::parser &parser, QByteArray &body, AnswerFormat::Image place)
{
    const simdjson::padded_string_view text = padded(body);
    json::document document;
    // Debug builds of the parser keep a list of levels, and want it longer than the document is
    // deep.
    if (parser.allocate(text.size(), DocumentWalk::maximumDepth + 8) != simdjson::SUCCESS
        || parser.iterate(text).get(document) != simdjson::SUCCESS) {
        return {};
    }
    return Reading(place).read(document);
}

} // namespace

ImageResult readAnswer(QByteArray body, const AnswerFormat &format)
{
    const auto refuse = [](QLatin1StringView message) {
        return tl::unexpected(ProviderError::invalidResponse(message));
    };
    json::parser parser; // Owns the texts that had to be unescaped.
    const auto found = findings(parser, body, format.image);
    if (!found) {
        return refuse(format.unreadable);
    }
    if (found->error) {
        return tl::unexpected(
            ProviderError::apiError(format.errorPrefix + QString::fromUtf8(*found->error)));
    }
    if (!found->image) {
        return refuse(format.noImage);
    }
    // Before decoding, which overwrites the text.
    const QString extension = format.extension(found->image->mimeType);
    const auto size = decodeStrictBase64(format.base64(found->image->text), body.data());
    if (!size) {
        return refuse(format.undecodable);
    }
    body.truncate(*size);
    body.squeeze();
    return GeneratedImage{std::move(body), extension};
}

QString extensionForMimeType(std::string_view mimeType)
{
    return mimeType.find("png") != std::string_view::npos ? u"png"_s : u"jpg"_s;
}

} // namespace providers
