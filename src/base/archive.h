// The primitives of the program's own stores: little-endian numbers, and strings with a length in front.
//
// A string's length is 1 byte below 255; else 0xFF and a u16; else 0xFF, 0xFFFF and a u32. The characters follow.
// Text is written as UTF-8; what is read is UTF-8 where it is valid and Windows-1252 otherwise.
#pragma once

#include "base/bytes.h"

#include <stdexcept>

namespace pelorin {

/// The bytes ended early, or a length is larger than what is left.
class ArchiveException : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

class ArchiveWriter {
public:
    void U8(std::uint8_t v) { m_out.U8(v); }
    void U16(std::uint16_t v) { m_out.U16LE(v); }
    void U32(std::uint32_t v) { m_out.U32LE(v); }
    void I32(std::int32_t v) { m_out.I32LE(v); }
    void String(std::string_view utf8);
    void Raw(ByteSpan bytes) { m_out.Raw(bytes); }

    [[nodiscard]] ByteSpan View() const { return m_out.View(); }
    [[nodiscard]] Bytes Take() { return m_out.Take(); }

private:
    ByteWriter m_out;
};

/// Every read throws `ArchiveException` when the bytes do not hold it.
class ArchiveReader {
public:
    explicit ArchiveReader(ByteSpan bytes) : m_in(bytes) {}

    std::uint8_t U8() { return Checked(m_in.U8()); }
    std::uint16_t U16() { return Checked(m_in.U16LE()); }
    std::uint32_t U32() { return Checked(m_in.U32LE()); }
    std::int32_t I32() { return Checked(m_in.I32LE()); }
    std::string String();
    /// The next `count` bytes, a view into the archive.
    ByteSpan Raw(std::uint64_t count) { return Checked(m_in.Take(count)); }

    [[nodiscard]] std::size_t Pos() const { return m_in.Pos(); }
    [[nodiscard]] std::size_t Left() const { return m_in.Left(); }
    /// The bytes from here on, without moving.
    [[nodiscard]] ByteSpan Ahead() const { return m_in.All().subspan(m_in.Pos()); }
    void Skip(std::uint64_t count) { (void)Raw(count); }

private:
    template <class T>
    T Checked(T value) const {
        if (!m_in.Ok()) throw ArchiveException("the archive ends too early");
        return value;
    }

    ByteReader m_in;
};

} // namespace pelorin
