#include "containers/pe_file.h"

#include "base/parallel.h"

#include <array>
#include <atomic>
#include <numeric>

namespace pelorin {

namespace {

PeSection ReadSection(ByteReader& in) {
    PeSection section;
    const auto name = AsText(in.Take(8));
    section.name = std::string(name.substr(0, name.find('\0')));
    section.virtualSize = in.U32LE();
    section.virtualAddress = in.U32LE();
    section.rawSize = in.U32LE();
    section.rawOffset = in.U32LE();
    section.relocations = in.U32LE();
    section.lineNumbers = in.U32LE();
    in.Skip(4);
    section.flags = in.U32LE();
    return section;
}

std::uint64_t Fold(std::uint64_t sum) {
    return (sum & 0xFFFFFFFF) + (sum >> 32);
}

/// One's complement sums do not care for the width they are taken in: 32 bits at a time, to be folded at the end.
/// Without a carry test, because 2^32 words fit before a sum overflows, and in several sums that do not wait for each
/// other.
std::uint64_t SumOfWords(ByteSpan bytes) {
    const auto* p = bytes.data();
    const auto* const end = p + bytes.size();
    std::array<std::uint64_t, 4> sums{};
    for (; end - p >= 16; p += 16) {
        for (std::size_t i = 0; i < sums.size(); ++i) sums[i] += LoadU32LE(p + 4 * i);
    }
    auto sum = std::accumulate(sums.begin(), sums.end(), std::uint64_t{0});
    for (; end - p >= 2; p += 2) sum += LoadU16LE(p);
    return p == end ? sum : sum + *p;
}

} // namespace

ExecutableSignature FindExecutableSignature(ByteSpan file) {
    ByteReader in(file);
    in.Seek(0x3C);
    const std::size_t offset = in.U16LE();
    in.Seek(offset);
    if (in.StartsWith("NE")) return {ExecutableKind::Ne, offset};
    if (in.StartsWith("PE")) return {ExecutableKind::Pe, offset};
    return {};
}

std::optional<PeImage> PeImage::Parse(ByteSpan file) {
    const auto signature = FindExecutableSignature(file);
    if (signature.kind != ExecutableKind::Pe) return {};
    PeImage image;
    image.m_file = file;
    image.m_header = signature.offset;

    ByteReader in(file);
    in.Seek(signature.offset + 4);
    in.Skip(2);
    const std::size_t sections = in.U16LE();
    in.Skip(12);
    const std::size_t optionalSize = in.U16LE();
    in.Skip(2);
    const auto magic = ByteReader(in).U16LE();
    if (!in.Ok() || (magic != 0x10B && magic != 0x20B)) return {};
    image.m_is64Bit = magic == 0x20B;

    const std::size_t fixed = image.m_is64Bit ? 112 : 96;
    if (optionalSize < fixed || in.Left() < optionalSize) return {};
    const auto stated = image.Optional(fixed - 4);
    image.m_directoryCount = std::min<std::size_t>({kPeDirectoryCount, stated, (optionalSize - fixed) / 8});

    in.Skip(optionalSize);
    image.m_sectionTable = in.Pos();
    if (in.Left() / kPeSectionHeaderSize < sections || sections > kPeMaxSections) return {};
    image.m_sections.reserve(sections);
    for (std::size_t i = 0; i < sections; ++i) image.m_sections.push_back(ReadSection(in));
    return image;
}

PeRange PeImage::Directory(std::size_t number) const {
    if (number >= m_directoryCount) return {};
    const auto* entry = m_file.data() + DirectoryOffset(static_cast<PeDirectory>(number));
    return {LoadU32LE(entry), LoadU32LE(entry + 4)};
}

int PeImage::SectionAt(std::uint32_t rva) const {
    for (std::size_t i = 0; i < m_sections.size(); ++i) {
        if (m_sections[i].Memory().Contains(rva)) return static_cast<int>(i);
    }
    return -1;
}

std::optional<std::size_t> PeImage::FileOffset(std::uint32_t rva, std::uint32_t size) const {
    const auto inFile = [&](std::uint64_t offset) -> std::optional<std::size_t> {
        if (offset > m_file.size() || size > m_file.size() - offset) return {};
        return static_cast<std::size_t>(offset);
    };
    for (const auto& section : m_sections) {
        // The bytes of the file decide, not the memory: what is beyond them is only zeros.
        const PeRange held{section.virtualAddress, section.rawSize};
        if (held.Contains(rva) && std::uint64_t{rva} + size <= held.End()) {
            return inFile(std::uint64_t{section.rawOffset} + (rva - section.virtualAddress));
        }
    }
    if (std::uint64_t{rva} + size <= SizeOfHeaders()) return inFile(rva);
    return {};
}

ByteSpan PeImage::BytesAt(std::uint32_t rva, std::uint32_t size) const {
    const auto offset = FileOffset(rva, size);
    return offset ? m_file.subspan(*offset, size) : ByteSpan{};
}

std::uint64_t PeImage::RawEnd() const {
    std::uint64_t end = SizeOfHeaders();
    for (const auto& section : m_sections) {
        if (section.rawSize != 0) end = std::max(end, section.Raw().End());
    }
    return end;
}

ByteSpan FindExtraData(const PeImage& image) {
    std::uint64_t total = image.SizeOfHeaders();
    for (const auto& section : image.Sections()) total += section.rawSize;
    return total < image.File().size() ? image.File().subspan(static_cast<std::size_t>(total)) : ByteSpan{};
}

void PeChecksum::Add(ByteSpan bytes) {
    const auto length = bytes.size();
    if (!bytes.empty() && m_length % 2 != 0) { // the high half of a word begun before
        m_sum += std::uint64_t{bytes.front()} << 8;
        bytes = bytes.subspan(1);
    }
    // What is not in memory yet is read on all cores.
    constexpr std::size_t kPart = std::size_t{2} << 20;
    std::atomic<std::uint64_t> sum{0};
    ParallelFor((bytes.size() + kPart - 1) / kPart, 0, [&](std::size_t part) {
        const auto rest = bytes.subspan(part * kPart);
        sum += SumOfWords(rest.first(std::min(rest.size(), kPart)));
    });
    m_sum += Fold(sum);
    m_length += length;
}

std::uint32_t PeChecksum::Value() const {
    auto sum = m_sum;
    while (sum >> 16 != 0) sum = (sum & 0xFFFF) + (sum >> 16);
    return static_cast<std::uint32_t>(sum + m_length);
}

} // namespace pelorin
