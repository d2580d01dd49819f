// Bytes in and out of files: the only code that reads file bytes and the only code that lays them out.
//
// The byte order is in the name of every call. Nothing here knows what the bytes mean.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace pelorin {

using Bytes = std::vector<std::uint8_t>;
using ByteSpan = std::span<const std::uint8_t>;
using MutableByteSpan = std::span<std::uint8_t>;

// Single values at a place that the caller has checked.
inline std::uint16_t LoadU16LE(const std::uint8_t* p) {
    return static_cast<std::uint16_t>(p[0] | p[1] << 8);
}
inline std::uint16_t LoadU16BE(const std::uint8_t* p) {
    return static_cast<std::uint16_t>(p[0] << 8 | p[1]);
}
inline std::uint32_t LoadU32LE(const std::uint8_t* p) {
    return std::uint32_t{p[0]} | std::uint32_t{p[1]} << 8 | std::uint32_t{p[2]} << 16 | std::uint32_t{p[3]} << 24;
}
inline std::uint32_t LoadU32BE(const std::uint8_t* p) {
    return std::uint32_t{p[0]} << 24 | std::uint32_t{p[1]} << 16 | std::uint32_t{p[2]} << 8 | std::uint32_t{p[3]};
}
inline std::uint64_t LoadU64BE(const std::uint8_t* p) {
    // In one expression: compilers make one load of it.
    return std::uint64_t{p[0]} << 56 | std::uint64_t{p[1]} << 48 | std::uint64_t{p[2]} << 40 |
           std::uint64_t{p[3]} << 32 | std::uint64_t{p[4]} << 24 | std::uint64_t{p[5]} << 16 |
           std::uint64_t{p[6]} << 8 | std::uint64_t{p[7]};
}
inline void StoreU16LE(std::uint8_t* p, std::uint16_t v) {
    p[0] = static_cast<std::uint8_t>(v);
    p[1] = static_cast<std::uint8_t>(v >> 8);
}
inline void StoreU16BE(std::uint8_t* p, std::uint16_t v) {
    p[0] = static_cast<std::uint8_t>(v >> 8);
    p[1] = static_cast<std::uint8_t>(v);
}
inline void StoreU32LE(std::uint8_t* p, std::uint32_t v) {
    StoreU16LE(p, static_cast<std::uint16_t>(v));
    StoreU16LE(p + 2, static_cast<std::uint16_t>(v >> 16));
}
inline void StoreU32BE(std::uint8_t* p, std::uint32_t v) {
    StoreU16BE(p, static_cast<std::uint16_t>(v >> 16));
    StoreU16BE(p + 2, static_cast<std::uint16_t>(v));
}

/// The bytes of a text, for tags and signatures; the text must outlive the span.
inline ByteSpan AsBytes(std::string_view text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}
inline std::string_view AsText(ByteSpan bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

/// A cursor over bytes that somebody else owns.
///
/// A read past the end yields 0 (or an empty span) and latches: from then on `Ok()` is false and every read yields 0.
/// Ask `Ok()` once per structure, before its values are used.
class ByteReader {
public:
    ByteReader() = default;
    explicit ByteReader(ByteSpan bytes) : m_bytes(bytes) {}

    [[nodiscard]] bool Ok() const { return m_ok; }
    [[nodiscard]] std::size_t Pos() const { return m_pos; }
    [[nodiscard]] std::size_t Size() const { return m_bytes.size(); }
    /// 0 once a read has failed, so that a loop over what is left ends.
    [[nodiscard]] std::size_t Left() const { return m_ok ? m_bytes.size() - m_pos : 0; }
    [[nodiscard]] bool AtEnd() const { return Left() == 0; }
    [[nodiscard]] ByteSpan All() const { return m_bytes; }

    std::uint8_t U8() {
        const auto* p = Need(1);
        return p ? p[0] : std::uint8_t{0};
    }
    std::int8_t I8() { return static_cast<std::int8_t>(U8()); }
    std::uint16_t U16LE() {
        const auto* p = Need(2);
        return p ? LoadU16LE(p) : std::uint16_t{0};
    }
    std::uint16_t U16BE() {
        const auto* p = Need(2);
        return p ? LoadU16BE(p) : std::uint16_t{0};
    }
    std::int16_t I16LE() { return static_cast<std::int16_t>(U16LE()); }
    std::int16_t I16BE() { return static_cast<std::int16_t>(U16BE()); }
    std::uint32_t U24BE() {
        const auto* p = Need(3);
        return p ? std::uint32_t{p[0]} << 16 | std::uint32_t{p[1]} << 8 | p[2] : 0;
    }
    std::uint32_t U32LE() {
        const auto* p = Need(4);
        return p ? LoadU32LE(p) : 0;
    }
    std::uint32_t U32BE() {
        const auto* p = Need(4);
        return p ? LoadU32BE(p) : 0;
    }
    std::int32_t I32LE() { return static_cast<std::int32_t>(U32LE()); }
    std::int32_t I32BE() { return static_cast<std::int32_t>(U32BE()); }
    std::uint64_t U64LE() {
        const std::uint64_t low = U32LE();
        return low | std::uint64_t{U32LE()} << 32;
    }
    std::uint64_t U64BE() {
        const std::uint64_t high = U32BE();
        return high << 32 | U32BE();
    }

    /// The next `count` bytes, and the cursor moves behind them; fewer are a failure.
    ByteSpan Take(std::uint64_t count) {
        const auto* p = Need(count);
        return p ? ByteSpan(p, static_cast<std::size_t>(count)) : ByteSpan();
    }
    /// As many of the next `count` bytes as there are; never a failure.
    ByteSpan TakeUpTo(std::uint64_t count) { return Take(m_ok ? std::min<std::uint64_t>(count, Left()) : 0); }
    /// The rest of the bytes.
    ByteSpan Rest() { return Take(m_ok ? Left() : 0); }
    void Skip(std::uint64_t count) { (void)Need(count); }

    /// Moves to `pos`, counted from the start; behind the end is a failure.
    void Seek(std::uint64_t pos) {
        if (pos > m_bytes.size()) {
            m_ok = false;
        } else {
            m_pos = static_cast<std::size_t>(pos);
        }
    }
    /// A reader over a part of the bytes, checked in 64 bits; a part that is not wholly inside gives a reader that has
    /// failed.
    [[nodiscard]] ByteReader Sub(std::uint64_t offset, std::uint64_t length) const {
        ByteReader sub;
        sub.m_ok = m_ok && offset <= m_bytes.size() && length <= m_bytes.size() - offset;
        if (sub.m_ok) sub.m_bytes = m_bytes.subspan(static_cast<std::size_t>(offset), static_cast<std::size_t>(length));
        return sub;
    }
    /// True when the next bytes are those of `text`; the cursor stays.
    [[nodiscard]] bool StartsWith(std::string_view text) const {
        return m_ok && Left() >= text.size() && std::memcmp(m_bytes.data() + m_pos, text.data(), text.size()) == 0;
    }
    /// Declares the input bad: a value made no sense.
    void Fail() { m_ok = false; }

private:
    const std::uint8_t* Need(std::uint64_t count) {
        if (!m_ok || count > m_bytes.size() - m_pos) {
            m_ok = false;
            return nullptr;
        }
        const auto* p = m_bytes.data() + m_pos;
        m_pos += static_cast<std::size_t>(count);
        return p;
    }

    ByteSpan m_bytes;
    std::size_t m_pos = 0;
    bool m_ok = true;
};

/// Bytes laid out one behind the other; places that are known later are patched.
class ByteWriter {
public:
    ByteWriter() = default;
    explicit ByteWriter(std::size_t expected) { m_bytes.reserve(expected); }

    void U8(std::uint32_t v) { m_bytes.push_back(static_cast<std::uint8_t>(v)); }
    void U16LE(std::uint32_t v) { StoreU16LE(Grow(2), static_cast<std::uint16_t>(v)); }
    void U16BE(std::uint32_t v) { StoreU16BE(Grow(2), static_cast<std::uint16_t>(v)); }
    void U32LE(std::uint32_t v) { StoreU32LE(Grow(4), v); }
    void U32BE(std::uint32_t v) { StoreU32BE(Grow(4), v); }
    void I32LE(std::int32_t v) { U32LE(static_cast<std::uint32_t>(v)); }
    void I32BE(std::int32_t v) { U32BE(static_cast<std::uint32_t>(v)); }
    void U64LE(std::uint64_t v) {
        U32LE(static_cast<std::uint32_t>(v));
        U32LE(static_cast<std::uint32_t>(v >> 32));
    }
    void U64BE(std::uint64_t v) {
        U32BE(static_cast<std::uint32_t>(v >> 32));
        U32BE(static_cast<std::uint32_t>(v));
    }
    void Raw(ByteSpan bytes) { m_bytes.insert(m_bytes.end(), bytes.begin(), bytes.end()); }
    void Text(std::string_view text) { Raw(AsBytes(text)); }
    void Zeros(std::size_t count) { m_bytes.resize(m_bytes.size() + count); }
    /// Zeros up to the next multiple of `unit`.
    void AlignTo(std::size_t unit) { Zeros((unit - m_bytes.size() % unit) % unit); }

    void PatchU16LE(std::size_t at, std::uint32_t v) { StoreU16LE(&m_bytes.at(at), static_cast<std::uint16_t>(v)); }
    void PatchU16BE(std::size_t at, std::uint32_t v) { StoreU16BE(&m_bytes.at(at), static_cast<std::uint16_t>(v)); }
    void PatchU32LE(std::size_t at, std::uint32_t v) { StoreU32LE(&m_bytes.at(at), v); }
    void PatchU32BE(std::size_t at, std::uint32_t v) { StoreU32BE(&m_bytes.at(at), v); }

    [[nodiscard]] std::size_t Size() const { return m_bytes.size(); }
    [[nodiscard]] ByteSpan View() const { return m_bytes; }
    [[nodiscard]] Bytes Take() { return std::move(m_bytes); }
    /// Room for `count` more bytes, zeroed; the pointer holds until the next call.
    std::uint8_t* Grow(std::size_t count) {
        m_bytes.resize(m_bytes.size() + count);
        return m_bytes.data() + m_bytes.size() - count;
    }

private:
    Bytes m_bytes;
};

} // namespace pelorin
