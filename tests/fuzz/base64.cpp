#include "input.h"
#include "naivebase64.h"
#include "providers/strictbase64.h"

#include <vector>

using fuzzing::require;
using providers::Base64Way;

namespace {

/// Decoded into memory that has not a byte more than is asked for.
std::optional<QByteArray> decode(const QByteArray &text, Base64Way way)
{
    std::vector<char> output(text.size() / 4 * 3);
    const auto size
        = providers::decodeStrictBase64({text.data(), size_t(text.size())}, output.data(), way);
    return size ? std::optional(QByteArray(output.data(), *size)) : std::nullopt;
}

std::optional<QByteArray> decodeInPlace(QByteArray text, Base64Way way)
{
    const std::string_view view(text.constData(), text.size());
    const auto size = providers::decodeStrictBase64(view, text.data(), way);
    return size ? std::optional(text.left(*size)) : std::nullopt;
}

QByteArray encode(const QByteArray &bytes, Base64Way way)
{
    QByteArray text = QByteArrayLiteral("x");
    providers::appendBase64(text, bytes, way);
    return text.sliced(1);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray input = fuzzing::bytes(data, size);
    const auto expected = fuzzing::decodeNaively({input.constData(), size});
    for (const Base64Way way : {Base64Way::Fastest, Base64Way::Portable}) {
        require(decode(input, way) == expected);
        QByteArray copy(input.constData(), input.size());
        require(decodeInPlace(std::move(copy), way) == expected);
        const QByteArray text = encode(input, way);
        require(text == input.toBase64());
        require(decode(text, way) == input);
    }
    return 0;
}
