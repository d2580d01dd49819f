#include "containers/mac_crc.h"

#include <array>

namespace pelorin {

namespace {

using Table = std::array<std::uint16_t, 256>;

constexpr Table kHighBitFirst = [] {
    Table table{};
    for (unsigned i = 0; i < 256; ++i) {
        unsigned value = i << 8;
        for (int bit = 0; bit < 8; ++bit) value = (value << 1) ^ ((value & 0x8000) != 0 ? 0x1021u : 0u);
        table[i] = static_cast<std::uint16_t>(value);
    }
    return table;
}();

constexpr Table kLowBitFirst = [] {
    Table table{};
    for (unsigned i = 0; i < 256; ++i) {
        unsigned value = i;
        for (int bit = 0; bit < 8; ++bit) value = (value >> 1) ^ ((value & 1) != 0 ? 0xA001u : 0u);
        table[i] = static_cast<std::uint16_t>(value);
    }
    return table;
}();

} // namespace

std::uint16_t MacBinaryCrc(ByteSpan bytes) {
    unsigned crc = 0;
    for (const auto byte : bytes) crc = (crc << 8 & 0xFFFF) ^ kHighBitFirst[(crc >> 8) ^ byte];
    return static_cast<std::uint16_t>(crc);
}

std::uint16_t StuffItCrc(ByteSpan bytes) {
    unsigned crc = 0;
    for (const auto byte : bytes) crc = crc >> 8 ^ kLowBitFirst[(crc ^ byte) & 0xFF];
    return static_cast<std::uint16_t>(crc);
}

} // namespace pelorin
