// The options by name over a person's store: what is changed here changes those keys of the store and no other.
#pragma once

#include "core/settings.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace pelorin {

class SettingsStore;

/// Everything that goes by the name of one option: a value, or a list.
struct NamedOption {
    const Setting* setting = nullptr;
    std::string list; ///< the section of a list; empty for a value

    [[nodiscard]] std::string Name() const { return setting != nullptr ? setting->Name() : list; }
    [[nodiscard]] std::string_view Type() const { return setting != nullptr ? TypeName(*setting) : "list"; }
    /// As a person reads them: one of a value, any number of a list.
    [[nodiscard]] std::vector<std::string> Values() const;
    [[nodiscard]] std::vector<std::string> Defaults() const;
    [[nodiscard]] bool IsDefault() const { return Values() == Defaults(); }
    /// A password, which a list of all options does not show.
    [[nodiscard]] bool IsSecret() const;
};

class SettingsSession {
public:
    /// Loads every option from the store, which outlives this.
    explicit SettingsSession(SettingsStore& store);

    /// In the order of the table, the lists last.
    [[nodiscard]] static std::vector<NamedOption> All();
    /// By "Key" or "section/Key", or a list's section; nothing for no such name.
    [[nodiscard]] static std::optional<NamedOption> Find(std::string_view name);

    /// The error, or nothing when the values were taken over. Nothing is on the disk before `Commit`.
    [[nodiscard]] std::optional<std::string> Set(const NamedOption& option, const std::vector<std::string>& values);
    /// Takes the keys out of the store, so that the default holds.
    void Reset(const NamedOption& option);
    /// Throws `FileException`.
    void Commit();

private:
    SettingsStore& m_store;
};

} // namespace pelorin
