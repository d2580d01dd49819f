// A text of sections and keys:
//
//   ; a note
//   [section]
//   key=value
//
// Names compare without case. What a change does not touch stays as it is: order, notes, unknown keys and lines.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace pelorin {

class IniFile {
public:
    IniFile() = default;
    /// Never fails: a line that is neither section nor key is kept and has no meaning. Both line ends are understood.
    explicit IniFile(std::string_view text);

    [[nodiscard]] std::optional<std::string> Get(std::string_view section, std::string_view key) const;
    /// Changes the key where it stands, else adds it at the section's end. False, with nothing changed, for a name or a
    /// value that would not come back as it is: line ends in it, '=' in a key, ']' in a section, blanks at an end.
    bool Set(std::string_view section, std::string_view key, std::string_view value);
    /// True when the key was there.
    bool Remove(std::string_view section, std::string_view key);
    /// Keys and values in the order of the file.
    [[nodiscard]] std::vector<std::pair<std::string, std::string>> Section(std::string_view section) const;
    [[nodiscard]] std::vector<std::string> SectionNames() const;
    /// The whole text; lines end with a line feed.
    [[nodiscard]] std::string Text() const;

private:
    struct Line {
        std::string section; ///< that the line stands in; for a head line its own name
        std::string key;     ///< empty for all lines but keys
        std::string text;    ///< of the whole line, and for a key its value
        bool head = false;
    };
    [[nodiscard]] std::size_t Find(std::string_view section, std::string_view key) const;

    std::vector<Line> m_lines;
};

} // namespace pelorin
