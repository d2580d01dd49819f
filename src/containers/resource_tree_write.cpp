// Laying the tree out: all directories, level by level, then the data entries, the strings and the data.
#include "containers/resource_tree.h"

namespace pelorin {

namespace {

constexpr std::uint32_t kHighBit = 0x80000000;
constexpr std::uint64_t kDataAlignment = 8;

constexpr std::uint64_t Align(std::uint64_t value, std::uint64_t unit) {
    return (value + unit - 1) / unit * unit;
}

constexpr std::uint64_t DirectorySize(std::size_t entries) {
    return 16 + std::uint64_t{8} * entries;
}

/// Where each kind of part begins.
struct Plan {
    std::uint64_t names = 0, languages = 0, dataEntries = 0, strings = 0, data = 0, end = 0;
};

std::uint64_t StringSize(const ResourceKey& key) {
    return key.named ? 2 + 2 * std::uint64_t{key.name.size()} : 0;
}

Plan MakePlan(const ResourceTree& tree) {
    std::uint64_t names = 0, languages = 0, entries = 0, strings = 0, data = 0;
    for (const auto& type : tree.types) {
        names += DirectorySize(type.names.size());
        strings += StringSize(type.key);
        for (const auto& name : type.names) {
            languages += DirectorySize(name.languages.size());
            strings += StringSize(name.key);
            entries += 16 * name.languages.size();
            for (const auto& language : name.languages) data += Align(language.bytes.size(), kDataAlignment);
        }
    }
    Plan plan;
    plan.names = DirectorySize(tree.types.size());
    plan.languages = plan.names + names;
    plan.dataEntries = plan.languages + languages;
    plan.strings = plan.dataEntries + entries;
    plan.data = Align(plan.strings + strings, kDataAlignment);
    plan.end = plan.data + data;
    return plan;
}

class TreeWriter {
public:
    TreeWriter(const Plan& plan, std::uint32_t rva)
        : m_rva(rva),
          m_out(static_cast<std::size_t>(plan.end)),
          m_names(plan.names),
          m_languages(plan.languages),
          m_entries(plan.dataEntries),
          m_strings(plan.strings),
          m_data(plan.data) {}

    Bytes Write(const ResourceTree& tree) {
        std::uint64_t at = 0;
        BeginDirectory(at, tree.stamp, tree.types);
        for (const auto& type : tree.types) {
            PutEntry(at, type.key, kHighBit | static_cast<std::uint32_t>(m_names));
            BeginDirectory(m_names, type.stamp, type.names);
            for (const auto& name : type.names) {
                PutEntry(m_names, name.key, kHighBit | static_cast<std::uint32_t>(m_languages));
                PutLanguages(name);
            }
        }
        return std::move(m_out);
    }

private:
    std::uint8_t* At(std::uint64_t place) { return m_out.data() + place; }

    void PutHeader(std::uint64_t& at, const ResourceStamp& stamp, std::size_t named, std::size_t numbered) {
        auto* p = At(at);
        StoreU32LE(p, stamp.characteristics);
        StoreU32LE(p + 4, stamp.time);
        StoreU16LE(p + 8, stamp.major);
        StoreU16LE(p + 10, stamp.minor);
        StoreU16LE(p + 12, static_cast<std::uint16_t>(named));
        StoreU16LE(p + 14, static_cast<std::uint16_t>(numbered));
        at += 16;
    }

    template <typename List>
    void BeginDirectory(std::uint64_t& at, const ResourceStamp& stamp, const List& entries) {
        const auto named = std::count_if(entries.begin(), entries.end(), [](const auto& e) { return e.key.named; });
        PutHeader(at, stamp, static_cast<std::size_t>(named), entries.size() - static_cast<std::size_t>(named));
    }

    void PutEntry(std::uint64_t& at, const ResourceKey& key, std::uint32_t to) {
        StoreU32LE(At(at), key.named ? kHighBit | PutString(key.name) : key.id);
        StoreU32LE(At(at + 4), to);
        at += 8;
    }

    std::uint32_t PutString(const std::u16string& text) {
        const auto place = m_strings;
        StoreU16LE(At(m_strings), static_cast<std::uint16_t>(text.size()));
        m_strings += 2;
        for (const auto c : text) {
            StoreU16LE(At(m_strings), c);
            m_strings += 2;
        }
        return static_cast<std::uint32_t>(place);
    }

    void PutLanguages(const ResourceName& name) {
        PutHeader(m_languages, name.stamp, 0, name.languages.size());
        for (const auto& language : name.languages) {
            PutEntry(m_languages, language.language, static_cast<std::uint32_t>(m_entries));
            auto* p = At(m_entries);
            const PeRange held{m_rva + static_cast<std::uint32_t>(m_data),
                               static_cast<std::uint32_t>(language.bytes.size())};
            const auto& place = language.unheld.size != 0 ? language.unheld : held;
            StoreU32LE(p, place.address);
            StoreU32LE(p + 4, place.size);
            StoreU32LE(p + 8, language.codePage);
            StoreU32LE(p + 12, language.reserved);
            m_entries += 16;
            std::copy(language.bytes.begin(), language.bytes.end(), At(m_data));
            m_data += Align(language.bytes.size(), kDataAlignment);
        }
    }

    std::uint32_t m_rva;
    Bytes m_out;
    std::uint64_t m_names, m_languages, m_entries, m_strings, m_data;
};

} // namespace

std::uint64_t ResourceTreeSize(const ResourceTree& tree) {
    return MakePlan(tree).end;
}

Bytes LayOutResourceTree(const ResourceTree& tree, std::uint32_t rva) {
    return TreeWriter(MakePlan(tree), rva).Write(tree);
}

} // namespace pelorin
