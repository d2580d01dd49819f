// The nine kinds of documents and the classes behind them.
#pragma once

#include "core/application.h"

namespace pelorin {

/// Registers the templates in the order of `DocKind`. A kind whose documents this program does not have is registered
/// as well, so that requests find it; opening one is refused with a message.
void RegisterDocTemplates(CPelorinApp& app);

} // namespace pelorin
