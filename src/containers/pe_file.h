// 32-bit and 64-bit program images (EXE, DLL and their like): headers, sections, and the way from a memory address to a
// place in the file.
//
// Layout, little-endian; h stands in the word at 0x3C:
//   h       'P' 'E' 0 0
//   h+4     file header, 20 bytes: u16 machine, u16 sections, u32 time, u32 symbol table's place in the file, u32
//   symbols,
//           u16 size of the optional header, u16 characteristics
//   h+24    optional header: u16 magic (0x10B: 32-bit, 0x20B: 64-bit), +8 size of initialised data, +16 entry point,
//           +32 section alignment, +36 file alignment, +56 size of the image, +60 size of all headers, +64 checksum;
//           at +92 (+108 in 64-bit images) u32 count of directories, then 8 bytes each: u32 address, u32 size
//   behind  section headers, 40 bytes each: 8 characters of name, u32 virtual size, u32 virtual address, u32 size in
//   the
//           file, u32 place in the file, u32 place of relocations, u32 place of line numbers, 2 x u16 counts, u32 flags
// Addresses are relative to the image's start in memory ("RVA"). The certificate table's directory alone holds a place
// in the file. What stands behind the last section's bytes is not loaded: symbols, certificates, an archive's data.
#pragma once

#include "base/bytes.h"

#include <optional>
#include <string>
#include <vector>

namespace pelorin {

enum class ExecutableKind { None, Ne, Pe };

/// Where the second header stands and which one it is. The pointer's high half is ignored, so headers lie in the first
/// 64 KB.
struct ExecutableSignature {
    ExecutableKind kind = ExecutableKind::None;
    std::size_t offset = 0;
};
[[nodiscard]] ExecutableSignature FindExecutableSignature(ByteSpan file);

/// Numbers of the directories that matter here.
enum class PeDirectory : std::size_t {
    Resources = 2,
    Certificates = 4, ///< its address is a place in the file
    Relocations = 5,
    Debug = 6,
    BoundImports = 11,
};
inline constexpr std::size_t kPeDirectoryCount = 16;

struct PeRange {
    std::uint32_t address = 0, size = 0;
    [[nodiscard]] std::uint64_t End() const { return std::uint64_t{address} + size; }
    [[nodiscard]] bool Contains(std::uint64_t at) const { return at >= address && at < End(); }
};

struct PeSection {
    std::string name; ///< up to 8 characters, without the zeros
    std::uint32_t virtualSize = 0, virtualAddress = 0, rawSize = 0, rawOffset = 0;
    std::uint32_t relocations = 0, lineNumbers = 0, flags = 0;

    /// What the section takes in memory; some linkers leave the virtual size 0.
    [[nodiscard]] PeRange Memory() const { return {virtualAddress, virtualSize != 0 ? virtualSize : rawSize}; }
    /// The section's bytes in the file.
    [[nodiscard]] PeRange Raw() const { return {rawOffset, rawSize}; }
};

inline constexpr std::size_t kPeSectionHeaderSize = 40;
/// Far more than any linker makes; it bounds the search for an address.
inline constexpr std::size_t kPeMaxSections = 2048;

/// The headers of an image whose bytes belong to somebody else.
class PeImage {
public:
    /// Nothing when the headers are not those of a program image or do not lie inside the file. Sections are not
    /// checked.
    [[nodiscard]] static std::optional<PeImage> Parse(ByteSpan file);

    [[nodiscard]] ByteSpan File() const { return m_file; }
    [[nodiscard]] const std::vector<PeSection>& Sections() const { return m_sections; }
    [[nodiscard]] bool Is64Bit() const { return m_is64Bit; }

    [[nodiscard]] std::size_t HeaderOffset() const { return m_header; }
    [[nodiscard]] std::size_t OptionalOffset() const { return m_header + 24; }
    [[nodiscard]] std::size_t SectionTableOffset() const { return m_sectionTable; }
    [[nodiscard]] std::size_t SectionTableEnd() const {
        return m_sectionTable + m_sections.size() * kPeSectionHeaderSize;
    }

    /// A u32 of the optional header.
    [[nodiscard]] std::uint32_t Optional(std::size_t at) const {
        return LoadU32LE(m_file.data() + OptionalOffset() + at);
    }
    [[nodiscard]] std::uint32_t EntryPoint() const { return Optional(16); }
    [[nodiscard]] std::uint32_t SectionAlignment() const { return Optional(32); }
    [[nodiscard]] std::uint32_t FileAlignment() const { return Optional(36); }
    [[nodiscard]] std::uint32_t SizeOfHeaders() const { return Optional(60); }
    /// Place of the COFF symbol table in the file; 0: none.
    [[nodiscard]] std::uint32_t SymbolTable() const { return LoadU32LE(m_file.data() + m_header + 12); }

    /// Directories that the header has room for, at most 16.
    [[nodiscard]] std::size_t DirectoryCount() const { return m_directoryCount; }
    /// Both numbers 0 when the header has no such directory.
    [[nodiscard]] PeRange Directory(std::size_t number) const;
    [[nodiscard]] PeRange Directory(PeDirectory number) const { return Directory(static_cast<std::size_t>(number)); }
    [[nodiscard]] std::size_t DirectoryOffset(PeDirectory number) const {
        return OptionalOffset() + (m_is64Bit ? 112 : 96) + static_cast<std::size_t>(number) * 8;
    }

    /// Number of the section whose memory holds the address; -1: none.
    [[nodiscard]] int SectionAt(std::uint32_t rva) const;
    /// Place in the file of `size` bytes at an address; nothing when they do not lie wholly in the file's part of one
    /// section (or of the headers).
    [[nodiscard]] std::optional<std::size_t> FileOffset(std::uint32_t rva, std::uint32_t size) const;
    /// Those bytes; empty when they do not.
    [[nodiscard]] ByteSpan BytesAt(std::uint32_t rva, std::uint32_t size) const;

    /// Where the last section's bytes end, by the section table; the file may be shorter.
    [[nodiscard]] std::uint64_t RawEnd() const;

private:
    ByteSpan m_file;
    std::vector<PeSection> m_sections;
    std::size_t m_header = 0, m_sectionTable = 0, m_directoryCount = 0;
    bool m_is64Bit = false;
};

/// Data behind the image: what the file has beyond the size of the headers plus the file sizes of all sections. Gaps
/// and overlaps are not looked at.
[[nodiscard]] ByteSpan FindExtraData(const PeImage& image);

/// The header checksum, over bytes that come in pieces: the 16-bit sum with end-around carry, plus the file's length.
/// The checksum field itself must be 0 in what is added.
class PeChecksum {
public:
    void Add(ByteSpan bytes);
    [[nodiscard]] std::uint32_t Value() const;

private:
    std::uint64_t m_sum = 0;
    std::uint64_t m_length = 0;
};

} // namespace pelorin
