#include "icon/source_file.h"

#include "core/file_kinds.h"
#include "formats/load_image.h"

namespace pelorin {

SourceFile::SourceFile(std::string_view path) : m_file(FileView::Open(path)), m_kind(GetFileKind(path)) {
    const auto* format = FindPictureFormat(Data(), m_kind);
    m_scalable = format && format->scalable;
}

DibBlock SourceFile::Read(Size size) const {
    if (!MayBePicture(m_kind)) return {};
    PictureRequest request;
    if (m_scalable) request.drawnFor = size;
    PictureFacts facts;
    return ReadPicture(Data(), m_kind, request, facts);
}

IconObjects CreateFormats(const SourceFile& file, const SourceForSize& make, std::span<const SizeArt> art,
                          const FromImageOptions& options) {
    if (!file.Scalable()) return CreateFormats(make({}), art, options);
    std::vector<SizeArt> drawn;
    for (const auto& format : options.formats) {
        const Size size{format.width, format.height};
        const auto same = [&](const SizeArt& other) { return other.size == size; };
        if (std::any_of(drawn.begin(), drawn.end(), same)) continue;
        const auto own = std::find_if(art.begin(), art.end(), same);
        drawn.push_back({size, own != art.end() ? CopyHandle(own->picture) : make(size)});
    }
    return CreateFormats({}, drawn, options);
}

} // namespace pelorin
