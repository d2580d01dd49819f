// Macintosh files in the tables of files that carry icons and of forms that one icon is saved in.
#pragma once

#include "icon/icon_file_forms.h"
#include "icon/icon_sources.h"

namespace pelorin {

[[nodiscard]] std::span<const IconSource> MacintoshIconSources();
[[nodiscard]] std::span<const IconFileForm> MacintoshFileForms();

} // namespace pelorin
