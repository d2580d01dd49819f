// Texts of sections and keys: the written form is stable, and a change is found where it was made.

#include "base/bytes.h"
#include "platform/ini_file.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using pelorin::IniFile;
    IniFile ini(pelorin::AsText({data, size}));
    const auto text = ini.Text();
    if (IniFile(text).Text() != text) std::abort();
    if (ini.Set("prefs", "JpegQuality", "1")) {
        if (IniFile(ini.Text()).Get("prefs", "JpegQuality") != "1") std::abort();
    }
    return 0;
}
