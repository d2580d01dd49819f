#include "platform/settings_store.h"

#include "base/text.h"

namespace pelorin {

namespace {

// A text that a line cannot hold as it is stands in quotes: line ends as \n and \r, quotes and backslashes with a
// backslash before them. All others, Windows paths above all, stand as they are.
bool NeedsQuotes(std::string_view value) {
    return Trim(value) != value || value.starts_with('"') || value.find_first_of("\r\n") != std::string_view::npos;
}

std::string Quote(std::string_view value) {
    std::string out = "\"";
    for (const char c : value) {
        if (c == '\n') {
            out += "\\n";
        } else if (c == '\r') {
            out += "\\r";
        } else {
            if (c == '"' || c == '\\') out += '\\';
            out += c;
        }
    }
    return out + '"';
}

std::string Unquote(const std::string& stored) {
    if (stored.size() < 2 || !stored.starts_with('"') || !stored.ends_with('"')) return stored;
    std::string out;
    for (std::size_t i = 1; i + 1 < stored.size(); ++i) {
        if (stored[i] != '\\' || i + 2 >= stored.size()) {
            out += stored[i];
            continue;
        }
        const char c = stored[++i];
        out += c == 'n' ? '\n' : c == 'r' ? '\r' : c;
    }
    return out;
}

} // namespace

std::optional<std::string> SettingsStore::Read(std::string_view section, std::string_view key) const {
    const auto stored = m_values.Get(section, key);
    if (!stored) return std::nullopt;
    return Unquote(*stored);
}

void SettingsStore::Write(std::string_view section, std::string_view key, std::string_view value) {
    const auto text = value.substr(0, value.find('\0'));
    (void)m_values.Set(section, key, NeedsQuotes(text) ? Quote(text) : std::string(text));
}

std::vector<std::pair<std::string, std::string>> SettingsStore::ReadSection(std::string_view section) const {
    auto keys = m_values.Section(section);
    for (auto& [key, value] : keys) value = Unquote(value);
    return keys;
}

} // namespace pelorin
