#include "platform/stored_registry.h"

#include "base/files.h"

namespace pelorin {

namespace {

std::string SectionOf(RegistryRoot root, std::string_view key) {
    static constexpr std::string_view kRoots[] = {"HKCR\\", "HKCU\\", "HKLM\\"};
    return std::string(kRoots[static_cast<std::size_t>(root)]).append(key);
}

std::string_view NameOf(std::string_view name) {
    return name.empty() ? "@" : name;
}

} // namespace

std::optional<std::string> StoredRegistry::ReadText(RegistryRoot root, std::string_view key,
                                                    std::string_view name) const {
    return m_store.Read(SectionOf(root, key), NameOf(name));
}

bool StoredRegistry::WriteText(RegistryRoot root, std::string_view key, std::string_view name, std::string_view text) {
    const auto section = SectionOf(root, key);
    const auto old = m_store.Read(section, NameOf(name));
    m_store.Write(section, NameOf(name), text);
    if (Keep()) return m_store.Read(section, NameOf(name)) == text;
    if (old) {
        m_store.Write(section, NameOf(name), *old);
    } else {
        m_store.Remove(section, NameOf(name));
    }
    return false;
}

bool StoredRegistry::DeleteValue(RegistryRoot root, std::string_view key, std::string_view name) {
    const auto section = SectionOf(root, key);
    const auto old = m_store.Read(section, NameOf(name));
    if (!old) return false;
    m_store.Remove(section, NameOf(name));
    if (Keep()) return true;
    m_store.Write(section, NameOf(name), *old);
    return false;
}

bool StoredRegistry::DeleteKey(RegistryRoot root, std::string_view key) {
    const auto section = SectionOf(root, key);
    const auto values = m_store.ReadSection(section);
    for (const auto& [name, text] : values) m_store.Remove(section, name);
    if (!values.empty() && Keep()) return true;
    for (const auto& [name, text] : values) m_store.Write(section, name, text);
    return false;
}

bool StoredRegistry::Keep() {
    if (m_fault.Strikes()) return false;
    try {
        m_store.Commit();
    } catch (const FileException&) {
        return false;
    }
    return true;
}

} // namespace pelorin
