// Feeds every file of the named folders to the harness that this is linked with.
#include "base/files.h"

#include <cstdio>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int main(int argc, char** argv) {
    using namespace pelorin;
    int count = 0;
    for (int i = 1; i < argc; ++i) {
        for (const auto& name : ListFolder(argv[i])) {
            const auto file = FileView::Open(JoinPath(argv[i], name));
            LLVMFuzzerTestOneInput(file.Data().data(), file.Data().size());
            ++count;
        }
    }
    LLVMFuzzerTestOneInput(nullptr, 0);
    std::printf("%d inputs replayed\n", count);
    return 0;
}
