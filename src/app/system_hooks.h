// The core's questions about files, answered by the readers of the layers above it.
#pragma once

#include "core/open_hooks.h"

namespace pelorin {

/// Answers without a window: no browser, no media framework (there is none on this system).
class SystemHooks : public OpenHooks {
public:
    [[nodiscard]] std::unique_ptr<IconListContent> ReadIconList(const std::string& path) override;
    [[nodiscard]] bool HasMacintoshIcon(const std::string& path) override;
};

} // namespace pelorin
