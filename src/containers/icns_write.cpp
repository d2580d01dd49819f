#include "base/files.h"
#include "containers/icns_file.h"
#include "containers/icns_images.h"

#include <algorithm>

namespace pelorin {

namespace {

struct Element {
    const IcnsElementKind* kind;
    Bytes color, mask;
};

class Family {
public:
    void Add(const CVnIcon& icon) {
        const auto* kind = IcnsElementFor({icon.m_nWidth, icon.m_nHeight, icon.BitCount()});
        if (!kind) return;
        auto planes = IcnsFromImage(*kind, icon);
        if (!planes) return;
        // The image of a pair stands in the element that a mask of its size may have made already.
        auto* present = kind->IsPair() ? Find(*kind) : nullptr;
        auto& element = present ? *present : m_elements.emplace_back(Element{kind, {}, {}});
        element.color = std::move(planes->color);
        AddMask(*kind, std::move(planes->mask));
    }

    [[nodiscard]] const std::vector<Element>& Sorted() {
        std::ranges::stable_sort(m_elements, {}, [](const Element& element) { return element.kind->rank; });
        return m_elements;
    }

private:
    // The first mask of its size and depth stays.
    void AddMask(const IcnsElementKind& of, Bytes mask) {
        const auto* kind = IcnsMaskElement(of.width, of.height, of.colorBits == 24 ? 8 : 1);
        if (!kind || mask.empty()) return;
        auto* present = Find(*kind);
        auto& element = present ? *present : m_elements.emplace_back(Element{kind, {}, {}});
        if (element.mask.empty()) element.mask = std::move(mask);
    }

    [[nodiscard]] Element* Find(const IcnsElementKind& kind) {
        const auto found = std::ranges::find_if(m_elements, [&](const Element& e) { return e.kind == &kind; });
        return found == m_elements.end() ? nullptr : &*found;
    }

    std::vector<Element> m_elements;
};

void WritePayload(const Element& element, ByteWriter& out) {
    out.Zeros(PaddingOf(*element.kind));
    // Without an image the mask stands for it.
    out.Raw(element.color.empty() && element.kind->IsPair() ? element.mask : element.color);
    out.Raw(element.mask);
}

} // namespace

bool WriteIcnsFamily(const CIconGroup& icon, ByteWriter& out, std::vector<IcnsRecord>* records) {
    Family family;
    for (const auto& image : icon.m_arrIcons) family.Add(*image);
    const auto& elements = family.Sorted();
    if (elements.empty()) return false;

    const auto note = [&](std::string_view type) {
        if (records) records->push_back({type, out.Size()});
    };
    const auto start = out.Size();
    const auto begin = [&](std::string_view type) {
        note(type);
        out.Text(type);
        out.U32BE(0);
        return out.Size() - kIcnsHeaderSize;
    };
    const auto end = [&](std::size_t at) { out.PatchU32BE(at + 4, static_cast<std::uint32_t>(out.Size() - at)); };
    begin("icns");
    for (const auto& element : elements) {
        const auto at = begin(element.kind->type);
        WritePayload(element, out);
        end(at);
    }
    if (out.Size() - start > kIcnsSizeLimit) {
        throw FileException("the icon would take more than 1 MB, the most that a Macintosh icon has; leave its largest "
                            "format out");
    }
    end(start);
    return true;
}

} // namespace pelorin
