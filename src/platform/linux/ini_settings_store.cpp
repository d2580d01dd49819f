#include "platform/linux/ini_settings_store.h"

#include "base/files.h"
#include "base/text.h"

namespace pelorin {

namespace {
constexpr std::uint64_t kLargestStore = 16u << 20;
}

IniSettingsStore::IniSettingsStore(std::string path) : m_path(std::move(path)) {
    if (!FileExists(m_path)) return;
    try {
        m_stored = AsText(FileView::Open(m_path, kLargestStore).Data());
        m_values = IniFile(DecodeText(m_stored));
    } catch (const FileException& error) {
        m_readError = error.what();
    }
}

void IniSettingsStore::Commit() {
    if (!m_readError.empty()) throw FileException(m_readError);
    auto text = m_values.Text();
    if (text == m_stored) return;
    (void)CreateFolders(FolderOf(m_path));
    WriteFileSafely(m_path, AsBytes(text));
    m_stored = std::move(text);
}

} // namespace pelorin
