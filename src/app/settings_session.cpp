#include "app/settings_session.h"

#include "base/text.h"
#include "platform/settings_store.h"

#include <algorithm>

namespace pelorin {

std::vector<std::string> NamedOption::Values() const {
    return setting != nullptr ? std::vector{DisplayText(*setting)} : *FindListSetting(list);
}

std::vector<std::string> NamedOption::Defaults() const {
    return setting != nullptr ? std::vector{DefaultDisplayText(*setting)} : std::vector<std::string>{};
}

bool NamedOption::IsSecret() const {
    return setting != nullptr && setting->key.ends_with("Password");
}

SettingsSession::SettingsSession(SettingsStore& store) : m_store(store) {
    LoadSettings(store);
}

std::vector<NamedOption> SettingsSession::All() {
    std::vector<NamedOption> options;
    for (const auto& setting : AllSettings()) options.push_back({&setting, {}});
    for (auto& list : ListSettingNames()) options.push_back({nullptr, std::move(list)});
    return options;
}

std::optional<NamedOption> SettingsSession::Find(std::string_view name) {
    if (const auto* setting = FindSetting(name)) return NamedOption{setting, {}};
    for (const auto& list : ListSettingNames()) {
        if (EqualsNoCase(list, name)) return NamedOption{nullptr, list};
    }
    return std::nullopt;
}

std::optional<std::string> SettingsSession::Set(const NamedOption& option, const std::vector<std::string>& values) {
    if (option.setting == nullptr) {
        const bool hasEmpty = std::ranges::any_of(values, [](const std::string& value) { return value.empty(); });
        if (hasEmpty) return "takes entries that are not empty";
        *FindListSetting(option.list) = values;
        StoreList(m_store, option.list);
        return std::nullopt;
    }
    if (values.size() != 1) return "takes one value";
    auto error = SetFromPerson(*option.setting, values.front());
    if (!error) StoreSetting(m_store, *option.setting);
    return error;
}

void SettingsSession::Reset(const NamedOption& option) {
    if (option.setting == nullptr) {
        FindListSetting(option.list)->clear();
        StoreList(m_store, option.list);
        return;
    }
    ForgetSetting(m_store, *option.setting);
}

void SettingsSession::Commit() {
    m_store.Commit();
}

} // namespace pelorin
