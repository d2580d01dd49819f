// The Open command.

#include "base/files.h"
#include "core/application.h"
#include "core/file_dialogs.h"
#include "core/settings.h"
#include "core/strings.h"

namespace pelorin {

namespace {

// In the order of the dialog.
constexpr int kFilterGroups[] = {str::kFilterIcons,    str::kFilterMacIcons,    str::kFilterLibraries,
                                 str::kFilterCursors,  str::kFilterImages,      str::kFilterPrograms,
                                 str::kFilterWebPages, str::kFilterImageObjects};

} // namespace

void CPelorinApp::OnFileOpen() {
    if (m_services.dialogs == nullptr) return;
    FileDialogRequest request;
    request.filter = OpenFilter();
    request.filterIndex = m_nOpenFilterIndex;
    request.folder = g_strCurrentOpenDirectory;
    const auto files = SplitChosenFiles(m_services.dialogs->ChooseToOpen(request));
    if (files.empty()) return;
    m_nOpenFilterIndex = request.filterIndex;
    g_strCurrentOpenDirectory = FolderOf(files.front());
    for (const auto& file : files) OpenDocumentFile(file);
}

// "All supported" has the patterns of every group.
std::string OpenFilter() {
    std::string groups, patterns;
    for (const int number : kFilterGroups) {
        const auto group = LoadText(number);
        groups += group;
        const auto bar = group.find('|');
        if (bar == std::string::npos) continue;
        if (!patterns.empty()) patterns += ';';
        patterns += group.substr(bar + 1, group.find('|', bar + 1) - bar - 1);
    }
    return FormatText(str::kFilterAllSupported, patterns) + LoadText(str::kFilterAllFiles) + groups + "|";
}

} // namespace pelorin
