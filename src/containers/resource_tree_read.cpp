// Reading the tree out of an image.
#include "containers/resource_tree.h"

namespace pelorin {

namespace {

constexpr std::uint32_t kHighBit = 0x80000000;
/// Entries that a tree may have beyond those that its bytes hold: loaders do not mind when directories are shared.
constexpr std::size_t kSharedEntries = 0x10000;

struct Entry {
    ResourceKey key = std::uint16_t{0};
    bool isDirectory = false;
    std::uint32_t place = 0;
};

struct Directory {
    ResourceStamp stamp;
    std::vector<Entry> entries;
};

class TreeReader {
public:
    /// `start` and `end`: the part of the file in which the tree stands.
    TreeReader(const PeImage& image, std::uint64_t start, std::uint64_t end, ResourceTreeFacts& facts)
        : m_image(image), m_facts(facts) {
        end = std::min<std::uint64_t>(end, image.File().size());
        if (start >= end) return;
        m_start = static_cast<std::size_t>(start);
        m_tree = image.File().subspan(m_start, static_cast<std::size_t>(end - start));
        m_budget = m_tree.size() / 8 + kSharedEntries;
    }

    ResourceTree Read() {
        ResourceTree tree;
        if (m_tree.empty()) return tree;
        auto root = ReadDirectory(0);
        tree.stamp = root.stamp;
        for (auto& entry : root.entries) {
            if (!IsDirectory(entry)) continue;
            auto names = ReadDirectory(entry.place);
            ResourceType type{std::move(entry.key), names.stamp, {}};
            for (auto& name : names.entries) AddName(type, name);
            if (!type.names.empty()) tree.types.push_back(std::move(type));
        }
        if (m_facts.whole) CheckKeys(tree);
        return tree;
    }

private:
    void AddName(ResourceType& type, Entry& entry) {
        if (!IsDirectory(entry)) return;
        auto languages = ReadDirectory(entry.place);
        ResourceName name{std::move(entry.key), languages.stamp, {}};
        for (const auto& language : languages.entries) AddLanguage(name, language);
        if (!name.languages.empty()) type.names.push_back(std::move(name));
    }

    void AddLanguage(ResourceName& name, const Entry& entry) {
        ByteReader in = ByteReader(m_tree).Sub(entry.place, 16);
        const auto rva = in.U32LE(), size = in.U32LE();
        ResourceData data{entry.key.id, in.U32LE(), in.U32LE(), {}, {}};
        if (!in.Ok() || entry.isDirectory || entry.key.named) {
            m_facts.whole = false;
            return;
        }
        // An empty resource may stand anywhere, also right behind the section's last byte.
        const auto offset = size == 0 ? std::optional(m_start) : m_image.FileOffset(rva, size);
        if (offset) {
            Use(*offset, size);
            data.bytes = m_image.File().subspan(*offset, size);
        } else if (IsMemoryOfAnother({rva, size})) {
            data.bytes = m_tree.first(0);
            data.unheld = {rva, size};
        } else {
            m_facts.whole = false;
            return;
        }
        Use(m_start + entry.place, 16);
        name.languages.push_back(data);
    }

    /// True when the range lies in the memory of one section, and not of that of the tree.
    [[nodiscard]] bool IsMemoryOfAnother(const PeRange& range) const {
        const int section = m_image.SectionAt(range.address);
        if (section < 0) return false;
        const auto& header = m_image.Sections()[static_cast<std::size_t>(section)];
        return range.End() <= header.Memory().End() && !(header.rawSize != 0 && header.Raw().Contains(m_start));
    }

    bool IsDirectory(const Entry& entry) {
        if (!entry.isDirectory) m_facts.whole = false;
        return entry.isDirectory;
    }

    Directory ReadDirectory(std::uint32_t place) {
        Directory directory;
        ByteReader in(m_tree);
        in.Seek(place);
        directory.stamp = {in.U32LE(), in.U32LE(), in.U16LE(), in.U16LE()};
        const std::size_t named = in.U16LE(), numbered = in.U16LE();
        const auto count = named + numbered;
        // Directories that share their entries can name far more of them than make sense.
        if (!in.Ok() || count > in.Left() / 8 || !IsWithin(count)) {
            m_facts.whole = false;
            return {};
        }
        m_budget -= count;
        Use(m_start + place, 16 + count * 8);
        directory.entries.reserve(count);
        for (std::size_t i = 0; i < count; ++i) {
            Entry entry;
            const auto key = in.U32LE(), to = in.U32LE();
            entry.isDirectory = (to & kHighBit) != 0;
            entry.place = to & ~kHighBit;
            if (ReadKey(key, entry.key)) directory.entries.push_back(std::move(entry));
        }
        return directory;
    }

    bool IsWithin(std::size_t count) {
        if (count > m_budget) m_facts.complete = false;
        return count <= m_budget;
    }

    bool ReadKey(std::uint32_t key, ResourceKey& out) {
        if ((key & kHighBit) == 0) {
            if (key > 0xFFFF) m_facts.whole = false;
            out = ResourceKey(static_cast<std::uint16_t>(key));
            return true;
        }
        const auto place = key & ~kHighBit;
        ByteReader in(m_tree);
        in.Seek(place);
        const std::size_t length = in.U16LE();
        const auto text = in.Take(length * 2);
        // The characters count against the budget as well: a thousand entries may share one long string.
        if (!in.Ok() || !IsWithin(length / 4)) {
            m_facts.whole = false;
            return false;
        }
        m_budget -= length / 4;
        Use(m_start + place, 2 + length * 2);
        std::u16string name(length, u'\0');
        for (std::size_t i = 0; i < length; ++i) name[i] = static_cast<char16_t>(LoadU16LE(text.data() + 2 * i));
        out = ResourceKey(std::move(name));
        return true;
    }

    void Use(std::size_t offset, std::size_t size) {
        m_facts.used.push_back({static_cast<std::uint32_t>(offset), static_cast<std::uint32_t>(size)});
    }

    // A key that stands twice could not be told apart afterwards.
    void CheckKeys(const ResourceTree& tree) {
        auto sorted = tree;
        sorted.Sort();
        const auto sameKey = [](const auto& a, const auto& b) { return a.key == b.key; };
        const auto sameLanguage = [](const auto& a, const auto& b) { return a.language == b.language; };
        const auto twice = [](const auto& list, auto same) {
            return std::adjacent_find(list.begin(), list.end(), same) != list.end();
        };
        bool repeated = twice(sorted.types, sameKey);
        for (const auto& type : sorted.types) {
            repeated = repeated || twice(type.names, sameKey);
            for (const auto& name : type.names) repeated = repeated || twice(name.languages, sameLanguage);
        }
        if (repeated) m_facts.whole = false;
    }

    const PeImage& m_image;
    ResourceTreeFacts& m_facts;
    ByteSpan m_tree;
    std::size_t m_start = 0;
    std::uint64_t m_budget = 0;
};

} // namespace

ResourceTree ReadResourceTree(const PeImage& image, ResourceTreeFacts* facts) {
    ResourceTreeFacts unwanted;
    auto& told = facts ? *facts : unwanted;
    const auto rva = image.Directory(PeDirectory::Resources).address;
    const auto start = rva != 0 ? image.FileOffset(rva, 16) : std::nullopt;
    if (!start) {
        told.whole = rva == 0;
        return {};
    }
    // The directory's own size is often wrong; the section's end is the limit.
    const int section = image.SectionAt(rva);
    const auto end = section < 0 ? std::uint64_t{image.SizeOfHeaders()}
                                 : image.Sections()[static_cast<std::size_t>(section)].Raw().End();
    return TreeReader(image, *start, end, told).Read();
}

ResourceTree ReadResourceTreeOf(const PeImage& image, const PeSection& section) {
    ResourceTreeFacts unwanted;
    return TreeReader(image, section.rawOffset, section.Raw().End(), unwanted).Read();
}

} // namespace pelorin
