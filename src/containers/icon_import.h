// The icons of any file that carries some, as they enter a library.
#pragma once

#include "containers/icon_container_doc.h"

namespace pelorin {

/// How it is told what a file is.
enum class KindBy {
    Name,
    Content, ///< where that tells anything, else by name
};

/// Icon and cursor files, libraries, program files and Macintosh files; all others give nothing. Icons of Macintosh
/// files are marked as such. Icons of a 32-bit program file have names ("%s %03d" where they have none of their own).
/// Throws `FileException` when the file cannot be read.
[[nodiscard]] IconGroups LoadIconsOf(const std::string& path, KindBy by = KindBy::Name);

/// The same for a library: an icon without a name takes that of the file, its first letter raised; of several icons
/// "%s %d" with the position from 1.
[[nodiscard]] IconGroups ImportIcons(const std::string& path, KindBy by = KindBy::Name);

} // namespace pelorin
