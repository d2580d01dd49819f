#pragma once

#include "platform/settings_store.h"

#include <string>

namespace pelorin {

/// The store in an INI file. A file that is not there is empty; one that cannot be read is an empty store, and `Commit`
/// then refuses to replace it.
class IniSettingsStore final : public SettingsStore {
public:
    explicit IniSettingsStore(std::string path);

    /// Makes the folder when it is missing; the old file stays until the new one is whole. Without changes nothing is
    /// written.
    void Commit() override;
    [[nodiscard]] const std::string& Path() const { return m_path; }

private:
    std::string m_path;
    std::string m_stored;
    std::string m_readError;
};

} // namespace pelorin
