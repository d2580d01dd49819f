#include "containers/icon_collector.h"

namespace pelorin {

namespace {

constexpr std::size_t kMostPositions = 0xFFFF; ///< entries name no later ones
constexpr std::size_t kSmallestChunk = 12;     ///< of a PNG file

} // namespace

bool ImageBudget::Claim(const IconImageRef& image) {
    const auto take = [](std::uint64_t& left, std::uint64_t wanted) {
        if (wanted > left) return false;
        left -= wanted;
        return true;
    };
    const std::uint64_t block = CVnIcon::BlockSize(image.width, image.height, image.colors, image.alpha);
    if (!image.compressed) return take(m_blocks, block);
    return take(m_compressed, block) && take(m_blocks, image.data.size());
}

bool ImageBudget::ClaimSteps(std::size_t count) {
    m_steps = count < m_steps ? m_steps - count : 0;
    return HasSteps();
}

bool ReadImageAt(ByteSpan file, std::uint64_t offset, std::uint64_t length, IconImageRef& image) {
    if (offset >= file.size()) return false;
    const auto held = std::min<std::uint64_t>(length, file.size() - offset);
    image.data = file.subspan(static_cast<std::size_t>(offset), static_cast<std::size_t>(held));
    image.offset = offset;
    image.capacity = static_cast<std::uint32_t>(held);
    image.bytes = static_cast<std::uint32_t>(std::min<std::uint64_t>(image.bytes, held));
    return InspectImage(image);
}

void PositionalIcons::AddImage(std::uint64_t offset, std::uint64_t length, int id, int language) {
    if (m_images.size() > kMostPositions || !m_budget.HasSteps()) return;
    IconImageRef image;
    image.id = id;
    image.language = language;
    image.bytes = UINT32_MAX; // no directory is known that could state less than there is
    // A block is as long as its header says, whatever the table tells; of a PNG file only the table does.
    if (offset >= m_file.size()) return;
    const bool png = AsText(m_file.subspan(static_cast<std::size_t>(offset))).starts_with("\x89PNG");
    if (!ReadImageAt(m_file, offset, png ? length : m_file.size(), image)) return;
    image.capacity = static_cast<std::uint32_t>(std::min<std::uint64_t>(image.capacity, length));
    const auto longest =
        std::max<std::uint64_t>(length, CVnIcon::BlockSize(image.width, image.height, image.colors, image.alpha));
    if (image.data.size() > longest) image.data = image.data.first(static_cast<std::size_t>(longest));
    // The chunks of a compressed image have been walked, and many entries can lead to one of them.
    if (m_budget.ClaimSteps(1 + (image.compressed ? image.data.size() / kSmallestChunk : 0))) m_images.push_back(image);
}

void PositionalIcons::AddGroup(ByteSpan directory, int id, int language) {
    if (!m_budget.HasSteps()) return;
    auto read = ReadGroupDirectory(directory);
    if (m_budget.ClaimSteps(read.size() + 1)) m_groups.push_back({std::move(read), id, language});
}

std::vector<IconGroupRef> PositionalIcons::Finish(int firstId, const std::vector<std::string>& names) {
    std::vector<IconGroupRef> icons;
    for (std::size_t i = 0; i < m_groups.size(); ++i) {
        const auto& group = m_groups[i];
        IconGroupRef icon;
        icon.id = group.id;
        icon.language = group.language;
        if (i < names.size()) icon.name = names[i];
        for (const auto& entry : group.directory) {
            const auto position = static_cast<std::int64_t>(entry.id) - firstId;
            if (position < 0 || position >= static_cast<std::int64_t>(m_images.size())) continue;
            const auto& image = m_images[static_cast<std::size_t>(position)];
            if (!m_budget.Claim(image)) return icons;
            icon.images.push_back(image);
        }
        if (icon.images.empty()) continue;
        icon.macintosh = group.directory.front().reserved == 1;
        icons.push_back(std::move(icon));
    }
    return icons;
}

} // namespace pelorin
