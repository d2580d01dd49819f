// Libraries: icons out of any file are written in both forms and read again.
#include "base/files.h"
#include "containers/icl_file.h"
#include "containers/program_file.h"
#include "core/temp_files.h"

#include <cstdlib>
#include <unistd.h>

using namespace pelorin;

namespace {

/// Every image of a library comes back as it was; compressed ones may not, since PNG keeps other colours at 24 bits.
void ExpectSame(const std::vector<std::unique_ptr<CIconGroup>>& wanted, const std::string& path) {
    const auto view = FileView::Open(path);
    const auto icons = LoadIcons(FindIcons(view.Data()), {});
    if (icons.size() != wanted.size()) std::abort();
    for (std::size_t i = 0; i < icons.size(); ++i) {
        if (icons[i]->GetCount() != wanted[i]->GetCount()) std::abort();
        for (int n = 0; n < icons[i]->GetCount(); ++n) {
            const auto &a = *icons[i]->GetIcon(n), &b = *wanted[i]->GetIcon(n);
            if (!a.m_bCompressed && !b.m_bCompressed && a.m_hImage != b.m_hImage) std::abort();
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size > (64u << 10)) return 0;
    g_szTempFolder = "/dev/shm/";
    const auto icons = LoadIcons(FindIcons({data, size}), {});
    std::vector<CIconGroup*> list;
    std::size_t bytes = 0;
    for (const auto& icon : icons) {
        list.push_back(icon.get());
        for (const auto& image : icon->m_arrIcons) bytes += image->m_hImage.size();
    }
    if (bytes > (4u << 20)) return 0;
    const auto path = "/dev/shm/pelorin-fuzz-" + std::to_string(getpid()) + ".icl";
    ResourceUpdater updater;
    if (WriteLibraryPe(path, list, updater) == LibraryError::None) ExpectSame(icons, path);
    if (FitsLibraryNe(list)) {
        WriteLibraryNe(path, list);
        ExpectSame(icons, path);
    }
    DeleteFile(path);
    return 0;
}
