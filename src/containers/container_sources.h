// Icon libraries and program files as sources of icons.
#pragma once

#include "icon/icon_sources.h"

namespace pelorin {

/// Rows for libraries and for the program kinds (EXE, DLL, OCX, DRV, CPL, SCR), to be added at start-up.
[[nodiscard]] std::span<const IconSource> ContainerIconSources();

} // namespace pelorin
