#include "containers/pe_icons.h"

#include "base/text.h"
#include "containers/icon_collector.h"

#include <unordered_map>

namespace pelorin {

namespace {

/// Groups of more images are not taken in mode 1.
constexpr std::size_t kMaxGroupCount = 50;
/// By what the directory says of itself, however many entries there are.
bool IsTaken(ByteSpan directory) {
    ByteReader in(directory);
    in.Skip(2);
    const auto type = in.U16LE(), count = in.U16LE();
    return in.Ok() && type == 1 && count < kMaxGroupCount;
}

std::uint64_t OffsetIn(const PeImage& image, ByteSpan bytes) {
    return static_cast<std::uint64_t>(bytes.data() - image.File().data());
}

struct Candidate {
    int language;
    ByteSpan bytes;
};

/// All images with a number, by number and in the order of their languages.
std::unordered_map<int, std::vector<Candidate>> ImagesById(const ResourceTree& tree, IconResources& out) {
    std::unordered_map<int, std::vector<Candidate>> images;
    const auto* type = tree.Find(kResourceIcon);
    if (!type) return images;
    for (const auto& name : type->names) {
        if (name.key.named) continue;
        auto& list = images[name.key.id];
        for (const auto& data : name.languages) {
            out.idTable.emplace_back(name.key.id, data.language);
            if (data.unheld.size == 0) {
                list.push_back({data.language, data.bytes});
            } else {
                out.unreadIds.push_back(name.key.id);
            }
        }
    }
    return images;
}

class TreeFinder {
public:
    explicit TreeFinder(const PeImage& image)
        : m_image(image), m_tree(ReadResourceTree(image, &m_facts)), m_budget(image.File().size()) {}

    IconResources Find(Progress* progress) {
        m_out.complete = m_facts.complete;
        m_images = ImagesById(m_tree, m_out);
        ReadLibraryNames();
        const auto* groups = m_tree.Find(kResourceGroupIcon);
        if (!groups) return std::move(m_out);
        ProgressScope scope(progress, {}, groups->names.size());
        std::size_t position = 0, done = 0;
        for (const auto& name : groups->names) {
            for (const auto& data : name.languages) {
                if (!AddGroup(name.key, data, position++)) return std::move(m_out);
            }
            scope.Step(++done);
        }
        return std::move(m_out);
    }

private:
    void ReadLibraryNames() {
        const auto* type = m_tree.Find(kResourceLibraryNames);
        const auto* name = type ? type->Find(1) : nullptr;
        if (!name) return;
        const auto table = name->languages.front().bytes; // in whatever language
        m_out.namesLanguage = name->languages.front().language;
        m_names = ReadNameTable(table);
        m_out.hasLibraryNames = AsText(table).starts_with(kNameTableStart);
    }

    /// False when the images found so far ask for more than makes sense.
    bool AddGroup(const ResourceKey& key, const ResourceData& data, std::size_t position) {
        IconGroupRef icon;
        icon.id = key.named ? -1 : key.id;
        icon.language = data.language;
        if (position < m_names.size()) icon.name = m_names[position];
        icon.resourceName = key.name;
        if (key.named) icon.name = Utf16ToUtf8(key.name);
        for (const auto& entry : ReadGroupDirectory(data.bytes)) {
            const auto found = m_images.find(entry.id);
            const auto languages = found == m_images.end() ? 0 : found->second.size();
            if (!m_budget.ClaimSteps(1 + languages)) return m_out.complete = false;
            if (languages == 0) continue;
            icon.macintosh = icon.macintosh || entry.reserved == 1;
            for (const auto& candidate : found->second) {
                IconImageRef image;
                image.id = entry.id;
                image.language = candidate.language;
                image.bytes = entry.bytes;
                image.bits = entry.bits;
                if (!ReadImageAt(m_image.File(), OffsetIn(m_image, candidate.bytes), candidate.bytes.size(), image)) {
                    m_out.unreadIds.push_back(entry.id);
                    continue;
                }
                if (!m_budget.Claim(image)) return m_out.complete = false;
                icon.images.push_back(image);
            }
        }
        if (icon.images.empty()) {
            m_out.unreadGroupIds.push_back(icon.id);
        } else {
            m_out.groups.push_back(std::move(icon));
        }
        return true;
    }

    const PeImage& m_image;
    ResourceTreeFacts m_facts;
    ResourceTree m_tree;
    ImageBudget m_budget;
    IconResources m_out;
    std::vector<std::string> m_names;
    std::unordered_map<int, std::vector<Candidate>> m_images;
};

} // namespace

std::vector<std::string> ReadNameTable(ByteSpan table) {
    if (table.size() <= kNameTableStart.size() || !AsText(table).starts_with(kNameTableStart)) return {};
    std::vector<std::string> names;
    ByteReader in(table);
    in.Skip(kNameTableStart.size());
    while (!in.AtEnd()) {
        const auto name = AsText(in.Take(in.U8()));
        if (!in.Ok()) break;
        names.push_back(name == kNoNamePe ? std::string() : DecodeText(name));
    }
    return names;
}

Bytes WriteNameTable(std::span<const std::string> names) {
    ByteWriter out;
    out.Text(kNameTableStart);
    for (const auto& name : names) {
        const auto stored = name.empty() ? kNoNamePe : ClipUtf8(name, 255);
        out.U8(static_cast<std::uint32_t>(stored.size()));
        out.Text(stored);
    }
    return out.Take();
}

IconResources FindIconsByTree(const PeImage& image, Progress* progress) {
    return TreeFinder(image).Find(progress);
}

IconResources FindIconsBySection(const PeImage& image) {
    IconResources out;
    out.mode = ProgramMode::PeWithoutUpdate;
    const auto isResources = [](const PeSection& section) { return section.name == ".rsrc"; };
    const auto section = std::find_if(image.Sections().begin(), image.Sections().end(), isResources);
    if (section == image.Sections().end()) return out;

    const auto tree = ReadResourceTreeOf(image, *section);
    PositionalIcons icons(image.File());
    int firstId = -1;
    for (const auto& type : tree.types) {
        const bool isImages = type.key == kResourceIcon;
        if (!isImages && type.key != kResourceGroupIcon) continue;
        for (const auto& name : type.names) {
            const int id = name.key.named ? -1 : name.key.id;
            for (const auto& data : name.languages) {
                if (!isImages) {
                    icons.AddGroup(IsTaken(data.bytes) ? data.bytes : ByteSpan{}, id, data.language);
                    continue;
                }
                if (firstId < 0) firstId = id;
                out.idTable.emplace_back(id, data.language);
                icons.AddImage(OffsetIn(image, data.bytes), data.bytes.size(), id, data.language);
            }
        }
    }
    out.groups = icons.Finish(std::max(firstId, 0), {});
    return out;
}

} // namespace pelorin
