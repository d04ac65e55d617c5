#include "providers/base64kernel.h"

#include <cstdint>
#include <cstring>

namespace providers::base64kernel {

#ifdef __x86_64__

namespace {

// Vectors of the compiler's own: computed with as if they were numbers, and a comparison yields a
// mask. The groups rely on the low byte of a number coming first.
using Letters = uint8_t __attribute__((vector_size(32)));
using Pairs = uint16_t __attribute__((vector_size(32)));
using Groups = uint32_t __attribute__((vector_size(32)));
using Quarters = uint64_t __attribute__((vector_size(32)));

constexpr qsizetype letterBlock = sizeof(Letters);
constexpr qsizetype byteBlock = letterBlock / 4 * 3;

bool isSupported()
{
    static const bool supported = __builtin_cpu_supports("avx2") != 0;
    return supported;
}

__attribute__((target("avx2"))) qsizetype decodeBlocks(std::string_view text, char *output)
{
    qsizetype done = 0;
    for (; qsizetype(text.size()) - done >= letterBlock; done += letterBlock) {
        Letters letters;
        std::memcpy(&letters, text.data() + done, sizeof letters);
        // Unsigned, so that one comparison tells both ends of a range.
        const auto isUpper = Letters(letters - uint8_t('A') < 26);
        const auto isLower = Letters(letters - uint8_t('a') < 26);
        const auto isDigit = Letters(letters - uint8_t('0') < 10);
        const auto isPlus = Letters(letters == '+');
        const auto isSlash = Letters(letters == '/');
        const auto isLetter = Quarters(isUpper | isLower | isDigit | isPlus | isSlash);
        if ((isLetter[0] & isLetter[1] & isLetter[2] & isLetter[3]) != ~uint64_t(0)) {
            break;
        }
        const Letters values = letters - (isUpper & 65) - (isLower & 71) + (isDigit & 4)
            + (isPlus & 19) + (isSlash & 16);
        const auto sixes = Pairs(values);
        const auto twelves = Groups(((sixes & 0x3f) << 6) | (sixes >> 8));
        const auto bytes = Letters(((twelves & 0xfff) << 12) | (twelves >> 16));
        const Letters packed = __builtin_shufflevector(bytes, bytes, 2, 1, 0, 6, 5, 4, 10, 9, 8, 14,
            13, 12, 18, 17, 16, 22, 21, 20, 26, 25, 24, 30, 29, 28, 3, 3, 3, 3, 3, 3, 3, 3);
        std::memcpy(output + done / 4 * 3, &packed, byteBlock);
    }
    return done;
}

__attribute__((target("avx2"))) qsizetype encodeBlocks(QByteArrayView bytes, char *output)
{
    qsizetype done = 0;
    // A block is read with eight bytes more than it takes.
    for (; bytes.size() - done >= letterBlock; done += byteBlock) {
        Letters block;
        std::memcpy(&block, bytes.data() + done, sizeof block);
        const auto groups
            = Groups(__builtin_shufflevector(block, block, 2, 1, 0, 2, 5, 4, 3, 5, 8, 7, 6, 8, 11,
                  10, 9, 11, 14, 13, 12, 14, 17, 16, 15, 17, 20, 19, 18, 20, 23, 22, 21, 23))
            & 0xffffff;
        const auto values = Letters((groups >> 18) | ((groups >> 4) & 0x3f00)
            | ((groups << 10) & 0x3f0000) | ((groups << 24) & 0x3f000000));
        // From 'A' on, with a jump wherever the alphabet makes one: to 'a', '0', '+' and '/'.
        const Letters letters = values + 65 + (Letters(values > 25) & 6)
            - (Letters(values > 51) & 75) - (Letters(values > 61) & 15)
            + (Letters(values > 62) & 3);
        std::memcpy(output + done / 3 * 4, &letters, sizeof letters);
    }
    return done;
}

} // namespace

qsizetype decode(std::string_view text, char *output)
{
    return isSupported() ? decodeBlocks(text, output) : 0;
}

qsizetype encode(QByteArrayView bytes, char *output)
{
    return isSupported() ? encodeBlocks(bytes, output) : 0;
}

#else

qsizetype decode(std::string_view /*text*/, char * /*output*/)
{
    return 0;
}

qsizetype encode(QByteArrayView /*bytes*/, char * /*output*/)
{
    return 0;
}

#endif

} // namespace providers::base64kernel
