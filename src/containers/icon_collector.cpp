#include "containers/icon_collector.h"

namespace pelorin {

bool ImageBudget::Claim(const IconImageRef& image) {
    auto& left = image.compressed ? m_compressed : m_blocks;
    const std::uint64_t wanted = CVnIcon::BlockSize(image.width, image.height, image.colors, image.alpha);
    if (wanted > left) return false;
    left -= wanted;
    return true;
}

bool ReadImageAt(ByteSpan file, std::uint64_t offset, std::uint64_t length, IconImageRef& image) {
    if (offset >= file.size()) return false;
    const auto held = std::min<std::uint64_t>(length, file.size() - offset);
    image.data = file.subspan(static_cast<std::size_t>(offset), static_cast<std::size_t>(held));
    image.offset = offset;
    image.capacity = static_cast<std::uint32_t>(held);
    if (image.bytes == 0 || image.bytes > held) image.bytes = static_cast<std::uint32_t>(held);
    return InspectImage(image);
}

void PositionalIcons::AddImage(std::uint64_t offset, std::uint64_t length, int id, int language) {
    IconImageRef image;
    image.id = id;
    image.language = language;
    if (ReadImageAt(m_file, offset, length, image)) m_images.push_back(image);
}

void PositionalIcons::AddGroup(ByteSpan directory, int id, int language) {
    m_groups.push_back({ReadGroupDirectory(directory), id, language});
}

std::vector<IconGroupRef> PositionalIcons::Finish(int firstId, const std::vector<std::string>& names) {
    std::vector<IconGroupRef> icons;
    for (std::size_t i = 0; i < m_groups.size(); ++i) {
        const auto& group = m_groups[i];
        IconGroupRef icon;
        icon.id = group.id;
        icon.language = group.language;
        if (i < names.size()) icon.name = names[i];
        for (const auto& entry : group.directory.entries) {
            const auto position = static_cast<std::int64_t>(entry.id) - firstId;
            if (position < 0 || position >= static_cast<std::int64_t>(m_images.size())) continue;
            const auto& image = m_images[static_cast<std::size_t>(position)];
            if (!m_budget.Claim(image)) return icons;
            icon.images.push_back(image);
        }
        if (icon.images.empty()) continue;
        icon.macintosh = group.directory.entries.front().reserved == 1;
        icons.push_back(std::move(icon));
    }
    return icons;
}

} // namespace pelorin
