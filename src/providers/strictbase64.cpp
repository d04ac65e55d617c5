#include "providers/strictbase64.h"

#include "providers/base64kernel.h"

#include <openssl/evp.h>

#include <algorithm>
#include <array>
#include <cstring>

namespace providers {

namespace {

/// Multiples of 4 and of 3, and far below what OpenSSL counts with: an int.
constexpr qsizetype textBlock = qsizetype(48) * 1024;
constexpr qsizetype byteBlock = textBlock / 4 * 3;

/// Absent unless there are at most two "=", all at the end.
std::optional<qsizetype> paddingLength(std::string_view text)
{
    const size_t lastLetter = text.find_last_not_of('=');
    const size_t letters = lastLetter == std::string_view::npos ? 0 : lastLetter + 1;
    if (text.size() - letters > 2 || text.substr(0, letters).find('=') != std::string_view::npos) {
        return {};
    }
    return text.size() - letters;
}

/// OpenSSL overlooks white space and "-" at both ends of a block, which then yields less.
bool decodeBlock(const char *text, qsizetype size, unsigned char *output)
{
    return EVP_DecodeBlock(output, reinterpret_cast<const unsigned char *>(text), int(size))
        == size / 4 * 3;
}

/// OpenSSL does not promise to bear its output on top of its input, so it decodes aside.
std::optional<qsizetype> decodeWithOpenSsl(std::string_view text, char *output)
{
    const qsizetype size = text.size();
    const auto padding = paddingLength(text);
    if (!padding) {
        return {};
    }
    std::array<unsigned char, byteBlock> bytes;
    for (qsizetype offset = 0; offset < size; offset += textBlock) {
        const qsizetype block = std::min(textBlock, size - offset);
        if (!decodeBlock(text.data() + offset, block, bytes.data())) {
            return {};
        }
        std::memcpy(output + offset / 4 * 3, bytes.data(), block / 4 * 3);
    }
    return size / 4 * 3 - *padding;
}

/// OpenSSL ends each block with a NUL, over which the next block comes to stand, or the end of a
/// byte array, which is a NUL anyway.
void encodeWithOpenSsl(QByteArrayView bytes, char *output)
{
    const auto *input = reinterpret_cast<const unsigned char *>(bytes.data());
    auto *letters = reinterpret_cast<unsigned char *>(output);
    for (qsizetype offset = 0; offset < bytes.size(); offset += byteBlock) {
        const qsizetype block = std::min(byteBlock, bytes.size() - offset);
        letters += EVP_EncodeBlock(letters, input + offset, int(block));
    }
}

} // namespace

std::optional<qsizetype> decodeStrictBase64(std::string_view text, char *output, Base64Way way)
{
    if (text.size() % 4 != 0) {
        return {};
    }
    const qsizetype letters = way == Base64Way::Fastest ? base64kernel::decode(text, output) : 0;
    const qsizetype size = letters / 4 * 3;
    const auto rest = decodeWithOpenSsl(text.substr(letters), output + size);
    return rest ? std::optional(size + *rest) : std::nullopt;
}

qsizetype base64Size(qsizetype size)
{
    return (size + 2) / 3 * 4;
}

void appendBase64(QByteArray &text, QByteArrayView bytes, Base64Way way)
{
    const qsizetype start = text.size();
    text.resize(start + base64Size(bytes.size()));
    char *output = text.data() + start;
    const qsizetype done = way == Base64Way::Fastest ? base64kernel::encode(bytes, output) : 0;
    encodeWithOpenSsl(bytes.sliced(done), output + done / 3 * 4);
}

} // namespace providers
