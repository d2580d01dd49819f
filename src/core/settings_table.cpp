// The globals, and the table that finds them by section and key.

#include "base/text.h"
#include "core/settings.h"
#include "core/strings.h"

#include <algorithm>

namespace pelorin {

namespace {

constexpr std::string_view kSectionPrefs = "prefs";
constexpr std::string_view kSectionSpecs = "specs";
constexpr std::string_view kSectionFolders = "folders";
constexpr std::string_view kSectionColors = "colors";
constexpr std::string_view kSectionMainWindow = "mainwin";
constexpr std::string_view kSectionInternet = "Internet Access";

constexpr int kAnyLeast = std::numeric_limits<int>::min();
constexpr int kAnyMost = std::numeric_limits<int>::max();

using SixteenColors = std::array<std::uint32_t, 16>;
constexpr SixteenColors kNoColors{};
constexpr SixteenColors kSystemColors{0x000000, 0x000080, 0x008000, 0x008080, 0x800000, 0x800080, 0x808000, 0xC0C0C0,
                                      0x808080, 0x0000FF, 0x00FF00, 0x00FFFF, 0xFF0000, 0xFF00FF, 0xFFFF00, 0xFFFFFF};

std::string ColorText(std::uint32_t color) {
    return std::to_string(static_cast<std::int32_t>(color));
}

// "Name%02d" with its number put in.
std::string NumberedKey(std::string_view format, std::size_t number) {
    return fmt::sprintf(std::string(format), number);
}

// Collects the rows.
class TableBuilder {
public:
    void Add(std::string_view section, std::string_view key, Setting::Value value, std::string defaultStored,
             int least = kAnyLeast, int most = kAnyMost, std::string_view oldSection = "") {
        Setting row{std::string(section), std::string(key), value, std::move(defaultStored)};
        row.least = least;
        row.most = most;
        row.oldSection = oldSection;
        m_rows.push_back(std::move(row));
    }
    void AddTextByNumber(std::string_view section, std::string_view key, std::string& text, int number) {
        Add(section, key, &text, {});
        m_rows.back().defaultText = number;
    }
    template <std::size_t N>
    void AddFlags(std::string_view section, std::string_view key, std::array<bool, N>& flags, std::size_t first,
                  std::string_view defaults) {
        for (std::size_t i = 0; i < N; ++i) {
            Add(section, NumberedKey(key, first + i), &flags[i], std::string(1, defaults[i]), 0, 1);
        }
    }
    void AddColors(std::string_view section, std::string_view key, SixteenColors& colors,
                   const SixteenColors& defaults) {
        for (std::size_t i = 0; i < colors.size(); ++i) {
            Add(section, NumberedKey(key, i), &colors[i], ColorText(defaults[i]));
        }
    }
    std::vector<Setting> Take() { return std::move(m_rows); }

private:
    std::vector<Setting> m_rows;
};

struct ListRow {
    std::string_view section;
    std::vector<std::string>* entries;
};

} // namespace

#define FLAG(section, key, global, value) bool global = value;
#define NUMBER(section, key, global, value, least, most) int global = value;
#define TEXT(section, key, global, value) std::string global = value;
#define TEXT_BY_NUMBER(section, key, global, number) std::string global{BuiltInText(number)};
#define MOVED_TEXT(section, key, global, oldSection) std::string global;
#define COLOR(section, key, global, value) std::uint32_t global = value;
#define FLAGS(section, key, global, first, count, values)                                                              \
    static_assert(std::string_view(values).size() == count);                                                           \
    std::array<bool, count> global = [] {                                                                              \
        std::array<bool, count> flags{};                                                                               \
        for (std::size_t i = 0; i < flags.size(); ++i) flags[i] = values[i] == '1';                                    \
        return flags;                                                                                                  \
    }();
#define COLORS(section, key, global, values) SixteenColors global = values;
#define LIST(section, global) std::vector<std::string> global;
#define MAP(section, global) std::map<std::string, std::string> global;
#include "core/settings.def"

int g_nInterfaceTypeInUse = g_nNewInterfaceType;
std::string g_strLibrarianRoot;

const std::vector<Setting>& AllSettings() {
    static const auto table = [] {
        TableBuilder t;
#define FLAG(section, key, global, value) t.Add(section, key, &global, (value) ? "1" : "0", 0, 1);
#define NUMBER(section, key, global, value, least, most)                                                               \
    t.Add(section, key, &global, std::to_string(value), least, most);
#define TEXT(section, key, global, value) t.Add(section, key, &global, value);
#define TEXT_BY_NUMBER(section, key, global, number) t.AddTextByNumber(section, key, global, number);
#define MOVED_TEXT(section, key, global, oldSection) t.Add(section, key, &global, "", 0, 0, oldSection);
#define COLOR(section, key, global, value) t.Add(section, key, &global, ColorText(value));
#define FLAGS(section, key, global, first, count, values) t.AddFlags(section, key, global, first, values);
#define COLORS(section, key, global, values) t.AddColors(section, key, global, values);
#include "core/settings.def"
        return t.Take();
    }();
    return table;
}

namespace {
constexpr ListRow kLists[] = {
#define LIST(section, global) {section, &global},
#include "core/settings.def"
};
} // namespace

const Setting* FindSetting(std::string_view name) {
    const auto& all = AllSettings();
    const auto found = std::ranges::find_if(all, [&](const Setting& setting) {
        return EqualsNoCase(setting.key, name) || EqualsNoCase(setting.Name(), name);
    });
    return found == all.end() ? nullptr : &*found;
}

std::vector<std::string>* FindListSetting(std::string_view section) {
    const auto row =
        std::ranges::find_if(kLists, [&](const ListRow& list) { return EqualsNoCase(list.section, section); });
    return row == std::end(kLists) ? nullptr : row->entries;
}

std::vector<std::string> ListSettingNames() {
    std::vector<std::string> names;
    for (const auto& list : kLists) names.emplace_back(list.section);
    return names;
}

} // namespace pelorin
