#include "icon/from_image.h"

#include "base/parallel.h"
#include "icon/format_order.h"
#include "icon/standard_formats.h"
#include "pixel/crop.h"
#include "pixel/depth.h"

namespace pelorin {

std::vector<IconFormat> DefaultFormats(bool macintosh) {
    std::vector<IconFormat> formats;
    const auto table = StandardFormats(macintosh);
    for (std::size_t i = 0; i < table.size(); ++i) {
        if (IsDefaultFormat(macintosh, i)) formats.push_back(table[i]);
    }
    return formats;
}

DibBlock PrepareIconSource(DibBlock picture, ColorRef key) {
    if (DIBBitCount(picture) != 32) picture = ConvertTo32(picture, key != kNoColor, key);
    if (DIBWidth(picture) == DIBHeight(picture)) return picture;
    return CenterOnSquare(picture);
}

IconObjects CreateFormats(const DibBlock& source, const FromImageOptions& options, Progress* progress) {
    SourcePicture picture(source);
    if (!picture.Ok()) return {};
    const auto count = options.formats.size();
    ProgressScope scope(progress, "Creating Images...", count);

    std::vector<Size> sizes;
    for (const auto& format : options.formats) sizes.push_back({format.width, format.height});
    picture.Prepare(sizes);

    SetImageOptions set;
    set.dither = options.dither;
    set.macPalette = options.macintosh;
    set.key = options.key;
    set.filter = options.filter;
    IconObjects made(count);
    ParallelFor(count, options.jobs, [&](std::size_t i) {
        const auto& f = options.formats[i];
        auto object = std::make_unique<CIconObject>();
        if (!object->SetFormat(f.bits, f.width, f.height, f.bits == 32, options.macintosh)) return;
        if (!object->SetImage(picture, set)) return;
        object->m_Stored.m_bCompressed = options.compress && !options.macintosh && MayBeCompressed(f.width, f.height);
        // Compressing is the longest step of a large format; here the others go on beside it.
        if (object->m_Stored.m_bCompressed) {
            object->UpdateStored();
            object->m_Stored.m_pPngData = object->m_Stored.WriteCompressed();
        }
        made[i] = std::move(object);
    });
    std::erase(made, nullptr);
    scope.Step(count);
    SortForDisplay(made);
    return made;
}

IconObjects CreateFormats(const DibBlock& source, std::span<const SizeArt> art, const FromImageOptions& options) {
    // Every picture makes the formats that are its own; the main one those that are left.
    FromImageOptions part = options;
    IconObjects made;
    const auto make = [&](const DibBlock& picture) {
        auto formats = CreateFormats(picture, part);
        std::move(formats.begin(), formats.end(), std::back_inserter(made));
    };
    std::vector<IconFormat> left = options.formats;
    for (const auto& own : art) {
        const auto isOwn = [&](const IconFormat& f) { return Size{f.width, f.height} == own.size; };
        part.formats.clear();
        std::copy_if(left.begin(), left.end(), std::back_inserter(part.formats), isOwn);
        std::erase_if(left, isOwn);
        make(own.picture);
    }
    part.formats = std::move(left);
    make(source);
    SortForDisplay(made);
    return made;
}

void SortForDisplay(IconObjects& formats) {
    std::stable_sort(formats.begin(), formats.end(),
                     [](const auto& a, const auto& b) { return DisplayKey(a->Format()) < DisplayKey(b->Format()); });
}

void SortForSaving(IconObjects& formats, bool explorerOrder) {
    std::stable_sort(formats.begin(), formats.end(), [=](const auto& a, const auto& b) {
        return explorerOrder ? ExplorerKey(a->Format()) < ExplorerKey(b->Format())
                             : SavingKey(a->Format()) < SavingKey(b->Format());
    });
}

CIconGroup GroupOf(IconObjects& formats, bool explorerOrder) {
    CIconGroup group;
    for (const auto& format : formats) {
        format->UpdateStored();
        CVnIcon copy;
        copy.Copy(format->m_Stored);
        copy.m_pPngData = format->m_Stored.m_pPngData;
        group.Append(std::move(copy));
    }
    group.Sort(explorerOrder);
    return group;
}

} // namespace pelorin
