#pragma once

#include <cstddef>
#include <cstdint>

namespace fuzzing {

/// The checksum of PNG chunks, a bit at a time.
inline uint32_t pngChecksum(const uint8_t *data, size_t size)
{
    uint32_t sum = ~uint32_t(0);
    for (size_t index = 0; index < size; ++index) {
        sum ^= data[index];
        for (int bit = 0; bit < 8; ++bit) {
            sum = (sum >> 1) ^ ((sum & 1) != 0 ? 0xedb88320U : 0);
        }
    }
    return ~sum;
}

/// Makes the checksum of every whole chunk right. Harmless to what is no PNG picture: those have
/// hardly a length that fits.
inline void correctPngChecksums(uint8_t *data, size_t size)
{
    constexpr size_t signature = 8;
    constexpr size_t frame = 12; // Length, name and checksum.
    if (size < signature || data[1] != 'P') {
        return;
    }
    size_t offset = signature;
    while (size - offset >= frame) {
        const uint8_t *head = data + offset;
        const size_t length = size_t(head[0]) << 24 | size_t(head[1]) << 16 | size_t(head[2]) << 8
            | size_t(head[3]);
        if (length > size - offset - frame) {
            return;
        }
        const uint32_t sum = pngChecksum(head + 4, length + 4);
        uint8_t *place = data + offset + 8 + length;
        for (int byte = 0; byte < 4; ++byte) {
            place[byte] = uint8_t(sum >> (24 - 8 * byte));
        }
        offset += frame + length;
    }
}

} // namespace fuzzing
