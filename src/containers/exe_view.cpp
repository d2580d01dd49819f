// The commands of a program file's list.
#include "base/files.h"
#include "containers/icon_container_view.h"
#include "containers/icon_import.h"
#include "core/services.h"
#include "core/user_prompt.h"

namespace pelorin {

bool CFileExeView::Delete() {
    if (m_program.GetMode() != ProgramMode::Full || m_selection.empty()) return false;
    if (!m_document.CloseEditors(m_selection) || !m_program.RemoveIcons(m_selection)) return false;
    m_selection.clear();
    return true;
}

bool CFileExeView::Replace(const std::string& path) {
    if (m_selection.size() != 1) return false;
    IconGroups icons;
    try {
        icons = LoadIconsOf(path);
    } catch (const FileException&) {
        icons.clear();
    }
    if (icons.empty()) {
        m_document.GetServices().prompt->Tell(PromptIcon::Stop, str::kFileHasNoIcons);
        return false;
    }
    return m_document.CloseEditors(m_selection) && m_program.ReplaceIcon(FirstSelected(), *icons.front());
}

} // namespace pelorin
