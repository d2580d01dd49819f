#include "base/text.h"
#include "platform/linux/linux_doors.h"

namespace pelorin {

namespace {

struct LanguageRow {
    std::string_view code; // ISO 639
    std::uint16_t primary;
};

// Those with a language module, and English.
constexpr LanguageRow kLanguages[] = {
    {"bg", 0x02}, {"zh", 0x04}, {"cs", 0x05}, {"da", 0x06}, {"de", 0x07}, {"el", 0x08}, {"en", 0x09}, {"es", 0x0A},
    {"fi", 0x0B}, {"fr", 0x0C}, {"he", 0x0D}, {"iw", 0x0D}, {"hu", 0x0E}, {"it", 0x10}, {"ja", 0x11}, {"ko", 0x12},
    {"nl", 0x13}, {"nb", 0x14}, {"nn", 0x14}, {"no", 0x14}, {"pl", 0x15}, {"pt", 0x16}, {"ru", 0x19}, {"hr", 0x1A},
    {"sr", 0x1A}, {"sk", 0x1B}, {"sv", 0x1D}, {"uk", 0x22}, {"sl", 0x24},
};

} // namespace

std::uint16_t PrimaryLanguageOf(std::string_view localeName) {
    const auto code = localeName.substr(0, localeName.find_first_of("_.@-"));
    for (const auto& row : kLanguages) {
        if (EqualsNoCase(row.code, code)) return row.primary;
    }
    return 0;
}

// The first variable that is set decides, as for all programs.
std::uint16_t LinuxLocale::PrimaryLanguage() const {
    for (const char* variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        const auto name = Environment(variable);
        if (!name.empty()) return PrimaryLanguageOf(name);
    }
    return 0;
}

} // namespace pelorin
