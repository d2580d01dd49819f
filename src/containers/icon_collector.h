// Shared by the readers that go by position: images in the order in which they stand in the file, and groups that name
// them by number.
#pragma once

#include "containers/icon_resources.h"

namespace pelorin {

/// How much work and memory the images of one file may ask for. A header of forty bytes can claim any size, many groups
/// can name one image, and many groups can share one long directory; honest files stay far below.
class ImageBudget {
public:
    explicit ImageBudget(std::size_t fileSize)
        : m_steps(fileSize / 2 + (std::size_t{1} << 20)), m_blocks(fileSize * 8 + (std::uint64_t{64} << 20)) {}
    /// False when the image is one too many.
    [[nodiscard]] bool Claim(const IconImageRef& image);
    /// For entries of directories and images looked at. False, also for every later claim, when it is too much.
    [[nodiscard]] bool ClaimSteps(std::size_t count);
    [[nodiscard]] bool HasSteps() const { return m_steps != 0; }

private:
    std::size_t m_steps;
    std::uint64_t m_blocks;
    std::uint64_t m_compressed = std::uint64_t{2} << 30;
};

/// An image out of the file's bytes from `offset` on, clipped to the file. False when it is none.
[[nodiscard]] bool ReadImageAt(ByteSpan file, std::uint64_t offset, std::uint64_t length, IconImageRef& image);

class PositionalIcons {
public:
    explicit PositionalIcons(ByteSpan file) : m_file(file), m_budget(file.size()) {}

    /// An image that is none takes no position, so that all later ones move up. `length`: bytes that the file keeps for
    /// it.
    void AddImage(std::uint64_t offset, std::uint64_t length, int id, int language);
    void AddGroup(ByteSpan directory, int id, int language);

    /// The icons that have images; entry ids count from `firstId`.
    [[nodiscard]] std::vector<IconGroupRef> Finish(int firstId, const std::vector<std::string>& names);
    [[nodiscard]] const std::vector<IconImageRef>& Images() const { return m_images; }

private:
    struct Group {
        GroupDirectory directory;
        int id, language;
    };
    ByteSpan m_file;
    ImageBudget m_budget;
    std::vector<IconImageRef> m_images;
    std::vector<Group> m_groups;
};

} // namespace pelorin
