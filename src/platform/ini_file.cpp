#include "platform/ini_file.h"

#include "base/text.h"

#include <algorithm>
#include <iterator>

namespace pelorin {

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr auto kNowhere = static_cast<std::size_t>(-1);

bool HasLineEnd(std::string_view text) {
    return text.find_first_of(std::string_view("\r\n\0", 3)) != std::string_view::npos;
}

bool IsNote(std::string_view line) {
    return line.starts_with(';') || line.starts_with('#');
}

bool CanBeSection(std::string_view name) {
    return !HasLineEnd(name) && name.find(']') == std::string_view::npos && Trim(name) == name;
}

bool CanBeKey(std::string_view key) {
    return !key.empty() && !HasLineEnd(key) && key.find('=') == std::string_view::npos && Trim(key) == key &&
           !key.starts_with('[') && !IsNote(key) && !key.starts_with(kByteOrderMark);
}

} // namespace

IniFile::IniFile(std::string_view text) {
    while (text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
    std::string section;
    while (!text.empty()) {
        const auto end = text.find('\n');
        auto line = text.substr(0, end);
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        while (line.ends_with('\r')) line.remove_suffix(1);

        const auto body = Trim(line);
        const auto equals = body.find('=');
        if (body.starts_with('[') && body.ends_with(']')) {
            section = Trim(body.substr(1, body.size() - 2));
            m_lines.push_back({section, {}, std::string(line), true});
        } else if (!IsNote(body) && !body.starts_with(kByteOrderMark) && equals != std::string_view::npos &&
                   equals > 0) {
            m_lines.push_back({section, std::string(Trim(body.substr(0, equals))),
                               std::string(Trim(body.substr(equals + 1))), false});
        } else {
            m_lines.push_back({section, {}, std::string(line), false});
        }
    }
}

std::size_t IniFile::Find(std::string_view section, std::string_view key) const {
    const auto line = std::ranges::find_if(m_lines, [&](const Line& own) {
        return !own.key.empty() && EqualsNoCase(own.key, key) && EqualsNoCase(own.section, section);
    });
    return line == m_lines.end() ? kNowhere : static_cast<std::size_t>(line - m_lines.begin());
}

std::optional<std::string> IniFile::Get(std::string_view section, std::string_view key) const {
    const auto at = Find(section, key);
    if (at == kNowhere) return std::nullopt;
    return m_lines[at].text;
}

bool IniFile::Set(std::string_view section, std::string_view key, std::string_view value) {
    if (!CanBeSection(section) || !CanBeKey(key) || HasLineEnd(value) || Trim(value) != value) return false;
    if (const auto at = Find(section, key); at != kNowhere) {
        m_lines[at].text = value;
        return true;
    }
    // Behind the section's last line that says something, so that an empty line before the next section stays there.
    auto last = std::find_if(m_lines.rbegin(), m_lines.rend(), [&](const Line& own) {
        return EqualsNoCase(own.section, section) && !Trim(own.text + own.key).empty();
    });
    if (last == m_lines.rend() && !section.empty()) {
        if (!m_lines.empty()) m_lines.push_back({m_lines.back().section, {}, {}, false});
        m_lines.push_back({std::string(section), {}, "[" + std::string(section) + "]", true});
        last = m_lines.rbegin();
    }
    m_lines.insert(last.base(), {std::string(section), std::string(key), std::string(value), false});
    return true;
}

bool IniFile::Remove(std::string_view section, std::string_view key) {
    const auto at = Find(section, key);
    if (at == kNowhere) return false;
    m_lines.erase(m_lines.begin() + static_cast<std::ptrdiff_t>(at));
    return true;
}

std::vector<std::pair<std::string, std::string>> IniFile::Section(std::string_view section) const {
    std::vector<std::pair<std::string, std::string>> keys;
    for (const auto& line : m_lines) {
        if (!line.key.empty() && EqualsNoCase(line.section, section)) keys.emplace_back(line.key, line.text);
    }
    return keys;
}

std::vector<std::string> IniFile::SectionNames() const {
    std::vector<std::string> names;
    for (const auto& line : m_lines) {
        if (line.head) names.push_back(line.section);
    }
    return names;
}

std::string IniFile::Text() const {
    std::string text;
    for (const auto& line : m_lines) {
        if (!line.key.empty()) text.append(line.key).append("=");
        text.append(line.text).append("\n");
    }
    return text;
}

} // namespace pelorin
