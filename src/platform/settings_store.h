// Where the options of one person are kept: texts by section and key.
#pragma once

#include "platform/ini_file.h"

#include <string>
#include <string_view>

namespace pelorin {

/// Reads see earlier writes at once; the store itself changes with `Commit` alone. Texts may hold anything but zero
/// bytes. Values that nobody asks for stay where they are.
class SettingsStore {
public:
    virtual ~SettingsStore() = default;

    [[nodiscard]] std::optional<std::string> Read(std::string_view section, std::string_view key) const;
    void Write(std::string_view section, std::string_view key, std::string_view value);
    void Remove(std::string_view section, std::string_view key) { (void)m_values.Remove(section, key); }
    [[nodiscard]] std::vector<std::pair<std::string, std::string>> ReadSection(std::string_view section) const;

    /// Makes what was written last. Throws `FileException`; the store is then as it was.
    virtual void Commit() = 0;

protected:
    IniFile m_values;
};

} // namespace pelorin
