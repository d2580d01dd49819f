#include "containers/pe_resources.h"

#include <bit>

namespace pelorin {

namespace {

constexpr std::uint64_t kMaxImage = std::uint64_t{1} << 31;
constexpr std::uint32_t kPage = 0x1000;
constexpr std::uint32_t kResourceSectionFlags = 0x40000040; // initialised data, readable

constexpr std::uint64_t Align(std::uint64_t value, std::uint64_t unit) {
    return (value + unit - 1) / unit * unit;
}

bool Overlap(const PeRange& a, const PeRange& b) {
    return a.size != 0 && b.size != 0 && a.address < b.End() && b.address < a.End();
}

bool HeadersMakeSense(const PeImage& image) {
    const auto file = image.File();
    const auto fileUnit = image.FileAlignment(), memoryUnit = image.SectionAlignment();
    // The loader looks at all 32 bits of the header's place.
    return LoadU16LE(file.data()) == 0x5A4D && LoadU32LE(file.data() + 0x3C) == image.HeaderOffset() &&
           std::has_single_bit(fileUnit) && std::has_single_bit(memoryUnit) && fileUnit <= 0x10000 &&
           fileUnit <= memoryUnit && memoryUnit <= 0x10000000 && image.SizeOfHeaders() >= image.SectionTableEnd() &&
           image.SizeOfHeaders() <= file.size() &&
           image.DirectoryCount() > static_cast<std::size_t>(PeDirectory::Resources) && !image.Sections().empty();
}

bool SectionsMakeSense(const PeImage& image) {
    std::vector<PeRange> raw;
    std::uint64_t memoryEnd = image.SizeOfHeaders();
    for (const auto& section : image.Sections()) {
        if (section.virtualAddress < memoryEnd || section.virtualAddress % image.SectionAlignment() != 0) return false;
        memoryEnd = section.Memory().End();
        if (memoryEnd > kMaxImage) return false;
        if (section.rawSize == 0) continue;
        if (section.rawOffset < image.SectionTableEnd()) return false;
        raw.push_back(section.Raw());
    }
    std::sort(raw.begin(), raw.end(), [](const PeRange& a, const PeRange& b) { return a.address < b.address; });
    const auto overlap = std::adjacent_find(raw.begin(), raw.end(), Overlap);
    if (overlap != raw.end()) return false;
    // Some linkers leave the padding of the last section away.
    return image.RawEnd() < image.File().size() + image.FileAlignment();
}

/// True when a base relocation points into the section, or when the table of them cannot be followed.
bool HasRelocationsInto(const PeImage& image, const PeRange& memory) {
    const auto place = image.Directory(PeDirectory::Relocations);
    ByteReader in(image.BytesAt(place.address, place.size));
    while (in.Left() >= 8) {
        const auto page = in.U32LE(), size = in.U32LE();
        if (size < 8) return size != 0;
        if (page < memory.End() && memory.address < std::uint64_t{page} + kPage && size > 12) return true;
        in.Skip(std::min<std::uint64_t>(size - 8, in.Left()));
    }
    return false;
}

/// True when something other than resources is known to live in the section.
bool IsSharedByDirectories(const PeImage& image, std::size_t section) {
    const auto memory = image.Sections()[section].Memory();
    if (memory.Contains(image.EntryPoint())) return true;
    if (image.Directory(PeDirectory::Resources).address != memory.address) return true;
    for (std::size_t i = 0; i < image.DirectoryCount(); ++i) {
        if (i == static_cast<std::size_t>(PeDirectory::Resources)) continue;
        if (i == static_cast<std::size_t>(PeDirectory::Certificates)) continue;
        const auto place = image.Directory(i);
        if (place.address != 0 && Overlap({place.address, std::max(place.size, 1u)}, memory)) return true;
    }
    return HasRelocationsInto(image, memory);
}

/// True when bytes of the section that the tree does not use hold something: some packers keep their own data there.
bool HasForeignBytes(const PeImage& image, std::size_t section, std::vector<PeRange> used) {
    constexpr std::string_view kFiller = "PADINGX"; // the letters that one widespread writer pads with
    constexpr std::uint64_t kSlack = 16;            // shorter gaps come from alignment
    const auto& header = image.Sections()[section];
    const auto size = std::min(header.rawSize, header.Memory().size);
    const PeRange held{header.rawOffset, size};
    std::sort(used.begin(), used.end(), [](const auto& a, const auto& b) { return a.address < b.address; });
    used.push_back({static_cast<std::uint32_t>(held.End()), 0});
    std::uint64_t at = held.address;
    for (const auto& part : used) {
        if (part.address > at + kSlack && held.Contains(at)) {
            const auto end = std::min<std::uint64_t>({part.address, held.End(), image.File().size()});
            for (auto i = at; i < end; ++i) {
                const auto byte = static_cast<char>(image.File()[static_cast<std::size_t>(i)]);
                if (byte != 0 && kFiller.find(byte) == std::string_view::npos) return true;
            }
        }
        at = std::max(at, part.End());
    }
    return false;
}

bool CountsFit(const ResourceTree& tree) {
    constexpr std::size_t kMost = 0xFFFF;
    bool fit = tree.types.size() <= kMost;
    for (const auto& type : tree.types) {
        fit = fit && type.names.size() <= kMost && type.key.name.size() <= kMost;
        for (const auto& name : type.names) {
            fit = fit && name.languages.size() <= kMost && name.key.name.size() <= kMost;
        }
    }
    return fit;
}

/// The plan in the making: headers are changed in a copy, which is put in at the end.
class Rewrite {
public:
    Rewrite(const PeImage& image, const ResourceTree& tree, FileSplice& out)
        : m_image(image), m_tree(tree), m_out(out), m_size(ResourceTreeSize(tree)) {
        m_headersEnd = image.SizeOfHeaders();
        for (const auto& section : image.Sections()) {
            if (section.rawSize != 0) m_headersEnd = std::min<std::uint64_t>(m_headersEnd, section.rawOffset);
        }
        const auto headers = image.File().first(static_cast<std::size_t>(m_headersEnd));
        m_headers.assign(headers.begin(), headers.end());
    }

    ResourceChange Run(const std::vector<PeRange>& used, bool dropSignature) {
        if (IsSigned(m_image)) {
            if (!dropSignature) return ResourceChange::Signed;
            DropSignature();
        }
        const auto placed = PlaceTree(used);
        if (placed != ResourceChange::Done) return placed;
        return MovePlaces() ? ResourceChange::Done : ResourceChange::TooLarge;
    }

private:
    std::uint8_t* Optional(std::size_t at) { return m_headers.data() + m_image.OptionalOffset() + at; }
    std::uint8_t* SectionHeader(std::size_t section) {
        return m_headers.data() + m_image.SectionTableOffset() + section * kPeSectionHeaderSize;
    }
    void SetDirectory(PeDirectory number, std::uint64_t address, std::uint64_t size) {
        auto* entry = m_headers.data() + m_image.DirectoryOffset(number);
        StoreU32LE(entry, static_cast<std::uint32_t>(address));
        StoreU32LE(entry + 4, static_cast<std::uint32_t>(size));
    }
    void AddToInitializedData(std::int64_t change) {
        const auto old = std::int64_t{LoadU32LE(Optional(8))};
        StoreU32LE(Optional(8), static_cast<std::uint32_t>(std::max<std::int64_t>(0, old + change)));
    }
    /// In an image with small alignment each byte stands in the file where it stands in memory, so nothing may move.
    [[nodiscard]] bool IsFlat() const { return m_image.SectionAlignment() < kPage; }
    /// True when behind the last byte of a flat image there is room for more. Some linkers make images with small
    /// alignment whose bytes stand elsewhere; no loader takes them, and there is no saying what to do with them.
    [[nodiscard]] bool HasOpenEnd() const {
        const auto stays = [](const PeSection& s) { return s.rawSize == 0 || s.rawOffset == s.virtualAddress; };
        return std::ranges::all_of(m_image.Sections(), stays) &&
               m_image.Sections().back().Memory().End() <= Align(m_image.RawEnd(), m_image.SectionAlignment());
    }
    /// Some linkers count bytes of sections as headers too. Such a file must not become shorter, since loaders refuse
    /// headers that end behind it.
    [[nodiscard]] bool HeadersReachIntoSections() const { return m_headersEnd < m_image.SizeOfHeaders(); }

    void DropSignature() {
        const auto place = m_image.Directory(PeDirectory::Certificates);
        // A table that claims parts of the image is no certificate table: only its entry goes.
        if (place.address >= m_image.RawEnd() && place.address < m_image.File().size()) {
            m_out.Replace(place.address, std::min<std::uint64_t>(place.End(), m_image.File().size()), {});
        }
        SetDirectory(PeDirectory::Certificates, 0, 0);
        m_signatureDropped = true;
    }

    ResourceChange PlaceTree(const std::vector<PeRange>& used) {
        const auto directory = m_image.Directory(PeDirectory::Resources);
        const int found = directory.address != 0 ? m_image.SectionAt(directory.address) : -1;
        if (found < 0) return AddSection();
        const auto section = static_cast<std::size_t>(found);
        const bool shared = IsSharedByDirectories(m_image, section);
        const bool foreign = !shared && HasForeignBytes(m_image, section, used);
        if (!shared && FitsInPlace(section)) {
            // Bytes that nobody names are kept where that is possible at all.
            if (!foreign || AddSection() != ResourceChange::Done) return PlaceInSection(section);
            RenameOld(section);
            return ResourceChange::Done;
        }
        const auto added = AddSection();
        if (added == ResourceChange::Done) {
            RenameOld(section);
            if (!shared && !foreign) EmptySection(section);
        }
        return added;
    }

    [[nodiscard]] std::uint64_t NextAddress(std::size_t section) const {
        return section + 1 < m_image.Sections().size() ? m_image.Sections()[section + 1].virtualAddress : kMaxImage;
    }

    [[nodiscard]] bool FitsInPlace(std::size_t section) const {
        const auto& header = m_image.Sections()[section];
        if (header.rawSize == 0 || header.virtualAddress + m_size > NextAddress(section)) return false;
        if (!IsFlat() || m_size <= header.rawSize) return true;
        return section + 1 == m_image.Sections().size() && HasOpenEnd();
    }

    ResourceChange PlaceInSection(std::size_t section) {
        const auto& header = m_image.Sections()[section];
        const bool last = section + 1 == m_image.Sections().size();
        const std::uint64_t unit = m_image.FileAlignment();
        // What stands behind moves by whole units of alignment only.
        auto rawSize = header.rawSize % unit == 0 ? Align(std::max<std::uint64_t>(m_size, 1), unit)
                       : m_size <= header.rawSize ? header.rawSize
                                                  : header.rawSize + Align(m_size - header.rawSize, unit);
        if (IsFlat() || HeadersReachIntoSections()) rawSize = std::max<std::uint64_t>(rawSize, header.rawSize);
        // Loaders want each section to begin where the one before it ends, so only the last one may shrink.
        const auto memory = last ? m_size : std::max<std::uint64_t>(m_size, header.Memory().size);

        auto bytes = LayOutResourceTree(m_tree, header.virtualAddress);
        bytes.resize(static_cast<std::size_t>(rawSize));
        m_out.Replace(header.rawOffset, std::min<std::uint64_t>(header.Raw().End(), m_image.File().size()),
                      std::move(bytes));
        StoreU32LE(SectionHeader(section) + 8, static_cast<std::uint32_t>(memory));
        StoreU32LE(SectionHeader(section) + 16, static_cast<std::uint32_t>(rawSize));
        SetDirectory(PeDirectory::Resources, header.virtualAddress, m_size);
        AddToInitializedData(static_cast<std::int64_t>(rawSize) - std::int64_t{header.rawSize});
        m_imageEnd = std::max(m_imageEnd, header.virtualAddress + memory);
        return ResourceChange::Done;
    }

    ResourceChange AddSection() {
        if (IsFlat() && !HasOpenEnd()) return ResourceChange::NoRoom;
        if (m_image.Sections().size() >= kPeMaxSections || !MakeHeaderRoom()) return ResourceChange::NoRoom;
        const std::uint64_t unit = m_image.FileAlignment(), end = m_image.RawEnd();
        const auto memoryEnd = std::max(m_image.Sections().back().Memory().End(), IsFlat() ? end : 0);
        const auto address = Align(memoryEnd, m_image.SectionAlignment());
        if (address + m_size > kMaxImage) return ResourceChange::TooLarge;

        const auto rawOffset = IsFlat() ? address : Align(end, unit), rawSize = Align(m_size, unit);
        Bytes bytes(static_cast<std::size_t>(rawOffset - std::min<std::uint64_t>(end, m_image.File().size())));
        const auto wholeSize = bytes.size() + static_cast<std::size_t>(rawSize);
        const auto tree = LayOutResourceTree(m_tree, static_cast<std::uint32_t>(address));
        bytes.reserve(wholeSize);
        bytes.insert(bytes.end(), tree.begin(), tree.end());
        bytes.resize(wholeSize);
        m_newSectionAt = std::min<std::uint64_t>(end, m_image.File().size());
        m_out.Replace(m_newSectionAt, m_newSectionAt, std::move(bytes));

        m_newSection = m_image.Sections().size();
        m_newSectionSize = rawSize;
        auto* header = SectionHeader(m_newSection);
        std::memcpy(header, ".rsrc\0\0\0", 8);
        StoreU32LE(header + 8, static_cast<std::uint32_t>(m_size));
        StoreU32LE(header + 12, static_cast<std::uint32_t>(address));
        StoreU32LE(header + 16, static_cast<std::uint32_t>(rawSize));
        StoreU32LE(header + 36, kResourceSectionFlags);
        StoreU16LE(m_headers.data() + m_image.HeaderOffset() + 6, static_cast<std::uint16_t>(m_newSection + 1));
        SetDirectory(PeDirectory::Resources, address, m_size);
        AddToInitializedData(static_cast<std::int64_t>(rawSize));
        m_imageEnd = address + m_size;
        return ResourceChange::Done;
    }

    /// Makes sure that one more section header fits behind the table. A table of bound imports, which linkers keep
    /// there, moves up; when the headers are full they grow by what the first section's address leaves.
    bool MakeHeaderRoom() {
        const auto tableEnd = m_image.SectionTableEnd();
        const auto bound = m_image.Directory(PeDirectory::BoundImports);
        const bool boundHere = bound.address >= tableEnd && bound.address < m_headersEnd && bound.End() <= m_headersEnd;
        const auto end = boundHere ? bound.End() : std::uint64_t{tableEnd};
        const auto needed = end + kPeSectionHeaderSize;
        const auto isZero = [&](std::uint64_t from, std::uint64_t to) {
            to = std::min<std::uint64_t>(to, m_headersEnd);
            for (auto i = from; i < to; ++i) {
                if (m_headers[static_cast<std::size_t>(i)] != 0) return false;
            }
            return true;
        };
        if (!isZero(tableEnd, boundHere ? bound.address : needed) || !isZero(end, needed)) return false;
        if (needed > m_headersEnd) {
            if (IsFlat()) return false;
            const auto grow = Align(needed - m_headersEnd, m_image.FileAlignment());
            const auto size = m_image.SizeOfHeaders() + grow;
            if (m_headersEnd != m_image.SizeOfHeaders() || size > m_image.Sections().front().virtualAddress)
                return false;
            m_headers.resize(static_cast<std::size_t>(m_headersEnd + grow));
            StoreU32LE(Optional(60), static_cast<std::uint32_t>(size));
        }
        if (boundHere) {
            const auto from = m_headers.begin() + static_cast<std::ptrdiff_t>(bound.address);
            const auto to = m_headers.begin() + static_cast<std::ptrdiff_t>(end);
            std::copy_backward(from, to, to + kPeSectionHeaderSize);
            std::fill(from, from + kPeSectionHeaderSize, std::uint8_t{0});
            SetDirectory(PeDirectory::BoundImports, bound.address + kPeSectionHeaderSize, bound.size);
        }
        return true;
    }

    /// Readers that go by the name must not find the tree that holds no longer.
    void RenameOld(std::size_t section) {
        if (m_image.Sections()[section].name == ".rsrc") std::memcpy(SectionHeader(section), ".oldrsrc", 8);
    }

    /// The section stays where it is in memory, with nothing in the file.
    void EmptySection(std::size_t section) {
        if (IsFlat() || HeadersReachIntoSections()) return;
        const auto& header = m_image.Sections()[section];
        const auto size = header.rawSize / m_image.FileAlignment() * m_image.FileAlignment();
        if (size != header.rawSize || header.Raw().End() > m_image.File().size()) return;
        m_out.Replace(header.rawOffset, header.Raw().End(), {});
        StoreU32LE(SectionHeader(section) + 8, header.Memory().size);
        StoreU32LE(SectionHeader(section) + 16, 0);
        AddToInitializedData(-std::int64_t{header.rawSize});
        m_emptied = static_cast<int>(section);
    }

    /// Everything that names a place in the file learns the new one.
    bool MovePlaces() {
        // The headers are put in as one edit over all of the old ones; a growth of them moves what stands behind.
        m_out.Replace(0, m_headersEnd, {});
        const auto newPlace = [&](std::uint64_t old) { return m_out.NewPlace(old) + m_headers.size(); };
        const bool fits = newPlace(m_image.File().size()) < kMaxImage;
        const auto move = [&](std::uint8_t* field) {
            const auto old = LoadU32LE(field);
            if (old < m_headersEnd) return;
            StoreU32LE(field, static_cast<std::uint32_t>(newPlace(old)));
        };
        for (std::size_t i = 0; i < m_image.Sections().size(); ++i) {
            auto* header = SectionHeader(i);
            if (LoadU32LE(header + 16) != 0) {
                move(header + 20);
            } else if (m_emptied == static_cast<int>(i)) {
                StoreU32LE(header + 20, 0);
            }
            move(header + 24);
            move(header + 28);
        }
        if (m_newSection != 0) {
            // The byte that stood at the section's place now stands right behind the section.
            StoreU32LE(SectionHeader(m_newSection) + 20,
                       static_cast<std::uint32_t>(newPlace(m_newSectionAt) - m_newSectionSize));
        }
        move(m_headers.data() + m_image.HeaderOffset() + 12);
        if (!m_signatureDropped && IsSigned(m_image)) {
            move(m_headers.data() + m_image.DirectoryOffset(PeDirectory::Certificates));
        }
        MoveDebugPlaces(newPlace);

        for (const auto& section : m_image.Sections()) m_imageEnd = std::max(m_imageEnd, SectionMemoryEnd(section));
        StoreU32LE(Optional(56), static_cast<std::uint32_t>(Align(m_imageEnd, m_image.SectionAlignment())));
        FillChecksum();
        return fits;
    }

    /// Memory of the sections that did not change; the one that holds the tree has been counted already.
    [[nodiscard]] std::uint64_t SectionMemoryEnd(const PeSection& section) const {
        const auto tree = LoadU32LE(m_headers.data() + m_image.DirectoryOffset(PeDirectory::Resources));
        return section.virtualAddress == tree ? 0 : section.Memory().End();
    }

    /// Debug entries keep addresses and places in the file side by side.
    template <typename NewPlace>
    void MoveDebugPlaces(const NewPlace& newPlace) {
        constexpr std::uint32_t kEntry = 28;
        const auto debug = m_image.Directory(PeDirectory::Debug);
        const auto offset = m_image.FileOffset(debug.address, debug.size);
        if (debug.address == 0 || !offset || *offset < m_headersEnd) return;
        for (std::uint32_t at = 0; at + kEntry <= debug.size; at += kEntry) {
            const auto field = *offset + at + 24;
            const auto old = LoadU32LE(m_image.File().data() + field);
            if (old < m_headersEnd || newPlace(old) == old) continue;
            Bytes bytes(4);
            StoreU32LE(bytes.data(), static_cast<std::uint32_t>(newPlace(old)));
            m_out.Replace(field, field + 4, std::move(bytes));
        }
    }

    void FillChecksum() {
        StoreU32LE(Optional(64), 0);
        PeChecksum sum;
        sum.Add(m_headers);
        for (const auto piece : m_out.Pieces()) sum.Add(piece);
        StoreU32LE(Optional(64), sum.Value());
        m_out.Replace(0, 0, std::move(m_headers));
    }

    const PeImage& m_image;
    const ResourceTree& m_tree;
    FileSplice& m_out;
    std::uint64_t m_size;
    std::uint64_t m_headersEnd = 0, m_imageEnd = 0;
    Bytes m_headers;
    std::size_t m_newSection = 0;
    std::uint64_t m_newSectionAt = 0, m_newSectionSize = 0;
    int m_emptied = -1;
    bool m_signatureDropped = false;
};

} // namespace

const char* DescribeResourceChange(ResourceChange change) {
    switch (change) {
    case ResourceChange::Done: return "done";
    case ResourceChange::Signed: return "the file is signed, and a change would make the signature invalid";
    case ResourceChange::NotAnImage: return "this is not a program image that can be changed";
    case ResourceChange::Damaged: return "the file's sections or resources are damaged";
    case ResourceChange::NoRoom: return "the resources need more room, and the file cannot take another section";
    case ResourceChange::TooLarge: return "there are more resources than the file format can hold";
    }
    return "";
}

bool IsSigned(const PeImage& image) {
    const auto place = image.Directory(PeDirectory::Certificates);
    return place.address != 0 && place.size != 0;
}

ResourceChange ReplaceResources(const PeImage& image, const ResourceTree& tree, bool dropSignature, FileSplice& out) {
    if (!HeadersMakeSense(image)) return ResourceChange::NotAnImage;
    if (!SectionsMakeSense(image)) return ResourceChange::Damaged;
    ResourceTreeFacts facts;
    (void)ReadResourceTree(image, &facts);
    if (!facts.whole) return ResourceChange::Damaged;
    if (!CountsFit(tree) || ResourceTreeSize(tree) >= kMaxImage) return ResourceChange::TooLarge;
    return Rewrite(image, tree, out).Run(facts.used, dropSignature);
}

} // namespace pelorin
