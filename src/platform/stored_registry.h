// A registry kept in a settings store, for systems that have none: a section a key, "HKCU\Control Panel\Desktop", and
// the default value under "@".
#pragma once

#include "platform/fault.h"
#include "platform/registry.h"
#include "platform/settings_store.h"

namespace pelorin {

class StoredRegistry final : public Registry {
public:
    /// The store outlives this.
    explicit StoredRegistry(SettingsStore& store) : m_store(store) {}

    [[nodiscard]] std::optional<std::string> ReadText(RegistryRoot root, std::string_view key,
                                                      std::string_view name) const override;
    bool WriteText(RegistryRoot root, std::string_view key, std::string_view name, std::string_view text) override;
    bool DeleteValue(RegistryRoot root, std::string_view key, std::string_view name) override;
    bool DeleteKey(RegistryRoot root, std::string_view key) override;

    Fault m_fault; ///< counts writes and deletions

private:
    [[nodiscard]] bool Keep();

    SettingsStore& m_store;
};

} // namespace pelorin
