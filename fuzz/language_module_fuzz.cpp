// String tables of program libraries.

#include "app/language_modules.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    (void)pelorin::ReadLanguageTexts({data, size}, "0.1.0");
    return 0;
}
