// Every kind of file that carries icons, one row each: told by content where that is possible, by the file's name else.
//
// Rows whose readers live above this folder (libraries, program files, Macintosh icons) are added at start-up.
#pragma once

#include "core/file_kinds.h"
#include "icon/icon_group.h"

#include <functional>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace pelorin {

/// Takes one icon after the other; the group may be moved from. False ends the reading.
using IconVisitor = std::function<bool(CIconGroup& group)>;

/// What is known of one file besides its icons.
struct IconFileReport {
    /// Name and value, in the order in which they are shown; names are snake_case words ("image_count").
    std::vector<std::pair<std::string, std::string>> facts;
    /// What a strict reader would object to, one sentence each.
    std::vector<std::string> oddities;
};

struct IconSource {
    FileKind kind;
    /// For lists: "ico".
    std::string_view name;
    /// True when the bytes are such a file; null where content tells nothing.
    bool (*matches)(ByteSpan file);
    /// Hands out the icons in the order of the file, one at a time, so that memory does not grow with their number.
    /// False when the file is damaged or is not of this kind; icons before the damage may have been handed out.
    bool (*visit)(ByteSpan file, const IconVisitor& visitor);
    /// The file in depth; null where there is nothing to tell.
    void (*inspect)(ByteSpan file, IconFileReport& report);
};

/// Adds rows; they are asked after those that are built in. Called at start-up, before the first use.
void AddIconSources(std::span<const IconSource> rows);
[[nodiscard]] std::vector<const IconSource*> AllIconSources();
/// The row for a file, null when no row takes it. A row of the named kind (0: none) is preferred where several match;
/// where none matches by content, the row of the named kind is given if it has no test.
[[nodiscard]] const IconSource* FindIconSource(ByteSpan file, int kind);

} // namespace pelorin
