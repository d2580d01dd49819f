// Files that carry icons as the verbs see them: opened, told apart, and their icons handed out one after the other.
#pragma once

#include "base/files.h"
#include "icon/icon_sources.h"

namespace pelorin::cli {

struct IconInput {
    FileView view;
    const IconSource* source = nullptr;
};

/// Opens a file ("-": standard input). Throws `FileException` when it cannot be read or carries no icons.
[[nodiscard]] IconInput OpenIconInput(const std::string& file);

/// Takes one icon, its number from 1, and whether the file has no other; false ends the reading.
using NumberedIconVisitor = std::function<bool(CIconGroup& group, int number, bool only)>;
/// Throws `FileException` when the file is damaged; the icons before the damage have been handed out then. At most two
/// icons are in memory at a time.
void VisitIcons(const IconInput& input, const NumberedIconVisitor& visitor);

/// Formats of a group in display order.
[[nodiscard]] std::vector<CVnIcon*> IconsForDisplay(CIconGroup& group);
/// What a format is called in lists: "48x48 - XP (RGB/A)".
[[nodiscard]] std::string DescriptionOf(const CVnIcon& icon, const CIconGroup& group);

} // namespace pelorin::cli
