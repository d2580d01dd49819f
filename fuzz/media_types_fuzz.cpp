// "MediaFiles.vnd": what is read is written again, and comes back as it is.

#include "core/media_types.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto types = pelorin::CMediaTypeTable::Read({data, size});
    const auto written = pelorin::CMediaTypeTable::Write(types);
    if (pelorin::CMediaTypeTable::Write(pelorin::CMediaTypeTable::Read(written)) != written) std::abort();
    return 0;
}
