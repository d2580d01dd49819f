// 16-bit files; the input begins at the second header, so that no byte is wasted on finding it. What was read is
// written over itself in place.
#include "base/files.h"
#include "containers/exe_doc.h"
#include "containers/program_file.h"
#include "core/services.h"
#include "core/user_prompt.h"

#include <cstdlib>
#include <unistd.h>

using namespace pelorin;

namespace {

/// Every icon is replaced by a copy of itself. Images may share their bytes with all else, so only the file's size is
/// sure to stay, and, when the save fails, the file.
void ReplaceInPlace(const Bytes& file) {
    const auto path = "/dev/shm/pelorin-fuzz-" + std::to_string(getpid()) + ".exe";
    WriteFileSafely(path, file);
    ScriptedPrompt prompt;
    Services services;
    services.prompt = &prompt;
    CFileExeDoc document(services);
    document.m_bCanUpdate = false;
    if (document.OnOpenDocument(path)) {
        document.SetPathName(path, false);
        for (int i = 0; i < document.GetCount(); ++i) {
            if (!document.ReplaceIcon(i, CIconGroup(*document.GetIcon(i)))) std::abort();
        }
        const bool saved = document.OnSaveDocument(path);
        const auto now = FileView::Open(path);
        if (now.Data().size() != file.size()) std::abort();
        if (!saved && !std::equal(file.begin(), file.end(), now.Data().begin())) std::abort();
    }
    DeleteFile(path);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const ByteSpan input(data, size);
    (void)LoadIcons(FindIcons(input), "fuzz");
    Bytes file(0x40);
    file[0x3C] = 0x40;
    file.insert(file.end(), {'N', 'E'});
    file.insert(file.end(), input.begin(), input.end());
    const auto found = FindIcons(file);
    (void)LoadIcons(found, {});
    for (const auto& icon : found.groups) (void)CopyAsIco(icon);
    if (!found.groups.empty()) ReplaceInPlace(file);
    return 0;
}
