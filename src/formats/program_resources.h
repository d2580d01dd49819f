// What is compiled into the program: blocks and pictures, found by type and name.
//
// "VNZB" and "RGBAZ" are VNZB blocks (vnzb.h), of any content and of a BMP file; "RGBA" is a BMP file as it stands. The
// table is made by tools/make_resources.py.
#pragma once

#include "base/files.h"
#include "pixel/dib.h"

#include <optional>

namespace pelorin {

struct ProgramResource {
    std::string_view type, name;
    ByteSpan bytes;
};

[[nodiscard]] std::span<const ProgramResource> ProgramResources();
/// Null when there is none of that type and name.
[[nodiscard]] const ProgramResource* FindProgramResource(std::string_view type, std::string_view name);

/// What the named "VNZB" resource holds; null when there is none.
[[nodiscard]] std::optional<Bytes> ExtractVnzbResource(std::string_view name);
/// The same into a file that is on its way; the number of bytes, null when there is no such resource. Write errors
/// throw `FileException`.
[[nodiscard]] std::optional<std::size_t> ExtractVnzbResource(std::string_view name, SafeFile& file);
/// The same into a new file; false when there is no such resource or the file cannot be written.
[[nodiscard]] bool ExtractVnzbResourceToPath(std::string_view name, std::string_view path);

/// The picture of an "RGBA" or "RGBAZ" resource; empty for other types. No progress is shown.
[[nodiscard]] DibBlock PictureOfResource(const ProgramResource& resource);

} // namespace pelorin
