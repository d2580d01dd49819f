#include "app/settings_session.h"
#include "base/text.h"
#include "cli/json_writer.h"
#include "cli/suggestion.h"
#include "cli/text_table.h"
#include "cli/verb.h"
#include "platform/doors.h"

#include <fmt/format.h>

namespace pelorin::cli {

namespace {

NamedOption FindOption(const std::string& name) {
    if (auto option = SettingsSession::Find(name)) return *option;
    std::vector<std::string> known;
    for (const auto& option : SettingsSession::All()) {
        known.push_back(option.setting != nullptr ? option.setting->key : option.list);
    }
    throw UsageError(fmt::format("there is no setting \"{}\"{}", name, DidYouMean(name, known)));
}

// As the table and the plain output show them.
std::string Shown(const std::vector<std::string>& values) {
    std::string text;
    for (const auto& value : values) text.append(text.empty() ? "" : "; ").append(Printable(value));
    return text;
}

void WriteValues(JsonWriter& json, const NamedOption& option, const std::vector<std::string>& values) {
    if (option.setting == nullptr) {
        json.BeginArray();
        for (const auto& value : values) json.String(value);
        json.EndArray();
    } else if (auto* const* flag = std::get_if<bool*>(&option.setting->value)) {
        json.Bool(values.front() == "1");
        (void)flag;
    } else if (option.Type() == "number") {
        json.Int(std::stoll(values.front()));
    } else {
        json.String(values.front());
    }
}

void WriteOption(JsonWriter& json, const NamedOption& option, bool secretsToo) {
    json.BeginObject();
    json.Field("section", option.setting != nullptr ? option.setting->section : option.list);
    json.Field("key", option.setting != nullptr ? option.setting->key : std::string{});
    json.Field("type", option.Type());
    json.Key("value");
    if (option.IsSecret() && !secretsToo) {
        json.Null();
    } else {
        WriteValues(json, option, option.Values());
    }
    json.Key("default");
    WriteValues(json, option, option.Defaults());
    if (option.Type() == "number") {
        json.Field("least", option.setting->least);
        json.Field("most", option.setting->most);
    }
    json.EndObject();
}

void PrintJson(Run& run, const std::vector<NamedOption>& options, bool secretsToo) {
    JsonWriter json;
    json.BeginArray();
    for (const auto& option : options) WriteOption(json, option, secretsToo);
    json.EndArray();
    run.Print(json.Take());
}

} // namespace

VerbAction SetUpSettingsList(VerbSetup& setup) {
    struct Options {
        std::string section;
        bool changed = false;
    };
    auto options = std::make_shared<Options>();
    setup.Input("SECTION", options->section, "only this section", false);
    setup.Flag("--changed", options->changed, "only what differs from its default");
    setup.Reports();
    return [options](Run& run) {
        const auto doors = MakeSystemDoors();
        const SettingsSession session(*doors.settings);
        std::vector<NamedOption> shown;
        bool known = options->section.empty();
        for (const auto& option : SettingsSession::All()) {
            const auto& section = option.setting != nullptr ? option.setting->section : option.list;
            const bool wanted = options->section.empty() || EqualsNoCase(section, options->section);
            known = known || wanted;
            if (wanted && !(options->changed && option.IsDefault())) shown.push_back(option);
        }
        if (!known) throw UsageError(fmt::format("there is no section \"{}\"", options->section));
        if (run.Options().json) return PrintJson(run, shown, false);
        TextTable table("lll");
        for (const auto& option : shown) {
            const bool hidden = option.IsSecret() && !option.IsDefault();
            table.Row({option.Name(), hidden ? "(set)" : Shown(option.Values()), std::string(option.Type())});
        }
        run.Print(table.Text());
    };
}

VerbAction SetUpSettingsGet(VerbSetup& setup) {
    auto names = std::make_shared<std::vector<std::string>>();
    setup.Inputs("NAME", *names, "settings, as Key or section/Key");
    setup.Reports();
    return [names](Run& run) {
        const auto doors = MakeSystemDoors();
        const SettingsSession session(*doors.settings);
        std::vector<NamedOption> options;
        for (const auto& name : *names) options.push_back(FindOption(name));
        if (run.Options().json) return PrintJson(run, options, true);
        for (const auto& option : options) {
            for (const auto& value : option.Values()) run.Print(Printable(value) + "\n");
        }
    };
}

VerbAction SetUpSettingsSet(VerbSetup& setup) {
    struct Options {
        std::string name;
        std::vector<std::string> values;
    };
    auto options = std::make_shared<Options>();
    setup.Input("NAME", options->name, "the setting, as Key or section/Key");
    setup.Inputs("VALUE", options->values, "its value; several for a list");
    return [options](Run& run) {
        const auto doors = MakeSystemDoors();
        SettingsSession session(*doors.settings);
        const auto option = FindOption(options->name);
        if (const auto error = session.Set(option, options->values)) throw UsageError(option.Name() + " " + *error);
        if (run.Attempt("settings", [&] { session.Commit(); })) {
            run.Detail(option.Name() + " = " + (option.IsSecret() ? "(set)" : Shown(option.Values())));
        }
    };
}

VerbAction SetUpSettingsReset(VerbSetup& setup) {
    struct Options {
        std::vector<std::string> names;
        bool all = false;
    };
    auto options = std::make_shared<Options>();
    setup.Inputs("NAME", options->names, "settings to put back to their defaults", false);
    setup.Flag("--all", options->all, "every setting");
    return [options](Run& run) {
        if (options->all == !options->names.empty()) throw UsageError("needs names, or --all");
        const auto doors = MakeSystemDoors();
        SettingsSession session(*doors.settings);
        std::vector<NamedOption> chosen;
        for (const auto& name : options->names) chosen.push_back(FindOption(name));
        if (options->all) chosen = SettingsSession::All();
        for (const auto& option : chosen) session.Reset(option);
        run.Attempt("settings", [&] { session.Commit(); });
    };
}

} // namespace pelorin::cli
