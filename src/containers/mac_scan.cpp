#include "containers/mac_scan.h"

#include "base/files.h"
#include "containers/icns_file.h"

namespace pelorin {

namespace {

constexpr std::size_t kPiece = 0x80000, kBlindTail = 0xC00, kSignatureOffset = 0x66;

// How much work the families of one file may ask for. A family inside another is read at its own place too, so bytes
// are walked more than once; honest files stay far below four times.
class ReadingBudget {
public:
    explicit ReadingBudget(std::size_t fileSize)
        : m_bytes(fileSize * 4 + 0x10000), m_pixels(kMaxPixels + static_cast<std::int64_t>(fileSize) * 8) {}

    [[nodiscard]] bool Claim(std::size_t bytes) {
        if (bytes > m_bytes) return false;
        m_bytes -= bytes;
        return true;
    }
    [[nodiscard]] std::int64_t& Pixels() { return m_pixels; }

private:
    std::size_t m_bytes;
    std::int64_t m_pixels;
};

// Places of `tag` from `start` up to `end`; the tag itself may go on behind `end`.
bool FindTag(std::string_view bytes, std::string_view tag, std::size_t start, std::size_t end,
             const std::function<bool(std::size_t)>& found) {
    const auto piece = bytes.substr(0, std::min(bytes.size(), end + tag.size() - 1));
    for (auto at = piece.find(tag, start); at < end; at = piece.find(tag, at + 1)) {
        if (!found(at)) return false;
    }
    return true;
}

[[noreturn]] void RefuseTooLarge() {
    throw FileException("the icon family says that it is larger than 1 MB, the most that is read");
}

} // namespace

bool IsMacBinary(ByteSpan file) {
    return AsText(file.subspan(std::min(file.size(), kSignatureOffset))).starts_with("mBIN");
}

void ScanForFamilies(ByteSpan file, const std::function<bool(std::size_t position)>& found) {
    if (file.size() <= kBlindTail) return;
    const auto last = file.size() - kBlindTail;
    for (auto start = IsMacBinary(file) ? kMacBinaryHeaderSize : 0; start < last; start += kPiece) {
        const auto end = std::min(start + kPiece, last);
        for (const auto* tag : {"icns", "odrp"}) {
            if (!FindTag(AsText(file), tag, start, end, found)) return;
        }
    }
}

bool VisitMacintoshIcons(ByteSpan file, const IconVisitor& visitor) {
    ReadingBudget budget(file.size());
    bool any = false, tags = false, tooLarge = false;
    // False ends the search.
    const auto read = [&](std::size_t position) {
        tags = true;
        const auto family = file.subspan(position);
        const auto length = IcnsLength(family);
        tooLarge = tooLarge || (length > kIcnsSizeLimit && length <= family.size());
        if (length == 0 || length > kIcnsSizeLimit) return true;
        if (!budget.Claim(std::min<std::size_t>(length, family.size()))) return false;
        CIconGroup group;
        if (!ReadIcnsFamily(family, group, budget.Pixels())) return true;
        any = true;
        return visitor(group);
    };
    ScanForFamilies(file, read);
    if (!tags) {
        if (const auto position = FindIcnsFamily(file)) (void)read(*position);
    }
    if (!any && tooLarge) RefuseTooLarge();
    return any;
}

bool ReadMacintoshIcons(ByteSpan file, std::vector<CIconGroup>& groups) {
    try {
        return VisitMacintoshIcons(file, [&](CIconGroup& group) {
            groups.push_back(std::move(group));
            return true;
        });
    } catch (const FileException&) {
        return false; // thrown only where there was no icon
    }
}

} // namespace pelorin
