#include "formats/program_resources.h"

#include "formats/bmp.h"
#include "formats/vnzb.h"

namespace pelorin {

const ProgramResource* FindProgramResource(std::string_view type, std::string_view name) {
    for (const auto& resource : ProgramResources()) {
        if (resource.type == type && resource.name == name) return &resource;
    }
    return nullptr;
}

std::optional<Bytes> ExtractVnzbResource(std::string_view name) {
    const auto* resource = FindProgramResource("VNZB", name);
    return resource ? UncompressVnzb(resource->bytes) : std::nullopt;
}

std::optional<std::size_t> ExtractVnzbResource(std::string_view name, SafeFile& file) {
    const auto content = ExtractVnzbResource(name);
    if (!content) return {};
    file.Write(*content);
    return content->size();
}

bool ExtractVnzbResourceToPath(std::string_view name, std::string_view path) {
    try {
        SafeFile file(path);
        if (!ExtractVnzbResource(name, file)) return false;
        file.Commit();
        return true;
    } catch (const FileException&) {
        return false;
    }
}

DibBlock PictureOfResource(const ProgramResource& resource) {
    PictureFacts facts;
    if (resource.type == "RGBA") return ReadBmp(resource.bytes, {}, facts);
    const auto file = resource.type == "RGBAZ" ? UncompressVnzb(resource.bytes) : std::nullopt;
    return file ? ReadBmp(*file, {}, facts) : DibBlock();
}

} // namespace pelorin
