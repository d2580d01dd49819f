// The commands of a library's list.
#include "base/files.h"
#include "containers/icon_container_view.h"
#include "containers/icon_import.h"
#include "core/services.h"
#include "core/user_prompt.h"

namespace pelorin {

bool CFileIclView::Import(const std::vector<std::string>& paths, int position, bool replaceSelection) {
    const auto& services = m_document.GetServices();
    IconGroups added;
    bool anyWithout = false;
    {
        ProgressScope progress(paths.size() > 1 ? services.progress : nullptr, LoadText(str::kImporting), paths.size());
        for (std::size_t i = 0; i < paths.size() && !progress.StopAsked(); ++i) {
            IconGroups icons;
            try {
                icons = ImportIcons(paths[i]);
            } catch (const FileException&) {
                icons.clear(); // stops this file only
            }
            anyWithout = anyWithout || icons.empty();
            for (auto& icon : icons) added.push_back(std::move(icon));
            progress.Step(i + 1);
        }
    }
    const int count = static_cast<int>(added.size());
    if (count > 0) {
        if (replaceSelection && !m_selection.empty()) {
            const std::vector<int> replaced = {FirstSelected()};
            if (!m_document.CloseEditors(replaced)) return false;
            position = FirstSelected();
            (void)m_document.TakeOut(replaced);
        }
        const int first = m_document.Insert(position, std::move(added));
        m_selection.clear();
        for (int i = 0; i < count; ++i) m_selection.push_back(first + i);
    }
    if (anyWithout) {
        services.prompt->Tell(PromptIcon::Stop, paths.size() == 1 ? str::kFileHasNoIcons : str::kFilesHadNoIcon);
    }
    return count > 0;
}

bool CFileIclView::Rename(const std::string& name, int first, int digits) {
    if (m_selection.empty()) return false;
    if (m_selection.size() == 1) {
        m_document.GetIcon(FirstSelected())->m_strName = name;
    } else {
        const auto base = name.empty() ? LoadText(str::kDefaultIconName) : name;
        const int width = std::clamp(digits, 0, 9);
        int number = first;
        for (const int index : m_selection) {
            m_document.GetIcon(index)->m_strName = base + fmt::sprintf("%0*d", width, number++);
        }
    }
    m_document.SetModifiedFlag();
    return true;
}

bool CFileIclView::SortByName() {
    if (m_selection.empty()) return false;
    if (m_selection.size() == 1) {
        const auto answer = m_document.GetServices().prompt->Ask(PromptButtons::YesNo, str::kAskSortAll);
        if (answer != PromptAnswer::Yes) return false;
        SelectAll();
    }
    const int first = FirstSelected(), count = static_cast<int>(m_selection.size());
    // Pairs that are equal keep their order.
    auto sorted = m_selection;
    std::stable_sort(sorted.begin(), sorted.end(), [this](int a, int b) {
        return m_document.GetIcon(a)->m_strName < m_document.GetIcon(b)->m_strName;
    });
    std::vector<int> order;
    for (int i = 0; i < m_document.GetCount(); ++i) {
        if (!std::binary_search(m_selection.begin(), m_selection.end(), i)) order.push_back(i);
    }
    order.insert(order.begin() + first, sorted.begin(), sorted.end());
    m_document.Reorder(order);
    for (int i = 0; i < count; ++i) m_selection[static_cast<std::size_t>(i)] = first + i;
    return true;
}

} // namespace pelorin
