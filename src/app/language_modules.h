// Language modules: program libraries whose string tables replace the built-in texts.
//
// A string table is a resource of type 6 for every 16 numbers: the block numbered n holds the strings (n - 1) x 16 and
// up, each a u16 count and that many UTF-16 characters; a count of 0 is a number without a text. The version stands in
// a resource of type 16, at byte 40: the signature 0xFEEF04BD, and 16 bytes on the product's version, the two high
// parts first.
#pragma once

#include "base/bytes.h"
#include "core/application.h"

namespace pelorin {

/// The texts of a module's bytes; empty when it is no program library, is of another version of this program, or has no
/// string that is not empty.
[[nodiscard]] std::map<int, std::string> ReadLanguageTexts(ByteSpan file, std::string_view version);

/// Reads the modules of this program's own version.
class PeLanguageModules final : public LanguageModules {
public:
    [[nodiscard]] std::map<int, std::string> ReadTexts(const std::string& path) override;
};

} // namespace pelorin
