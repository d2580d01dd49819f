// The person's language.
#pragma once

#include <cstdint>

namespace pelorin {

class LocaleInfo {
public:
    virtual ~LocaleInfo() = default;
    /// The primary part of a Windows language id (0x09 English, 0x0C French, ...); 0 for one that is not known.
    [[nodiscard]] virtual std::uint16_t PrimaryLanguage() const = 0;
};

} // namespace pelorin
