// The file forms that one icon can be saved in and read from, one row a kind. Windows icons are built in; the Macintosh
// forms live in a higher folder and are added at start-up.
#pragma once

#include "core/file_kinds.h"
#include "icon/icon_group.h"

#include <span>

namespace pelorin {

struct IconFileForm {
    FileKind kind;
    /// The extension of new files, without the dot.
    std::string_view extension;
    bool macintosh;
    /// Appends the file's icons; false, with the list unchanged, when it holds none.
    bool (*read)(ByteSpan file, std::vector<CIconGroup>& groups);
    /// The whole file as it will stand at `path`; formats that the form does not allow are left out. Empty when nothing
    /// is left or it cannot be made. Throws `FileException` where there is more to say.
    Bytes (*write)(const CIconGroup& icon, std::string_view path);
    /// Whether the form can hold such a format; null: any.
    bool (*allows)(const IconFormat& format);
};

void AddIconFileForms(std::span<const IconFileForm> rows);
/// Null for kinds that no single icon is kept in.
[[nodiscard]] const IconFileForm* FindIconFileForm(int kind);

} // namespace pelorin
