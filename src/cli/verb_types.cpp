#include "base/files.h"
#include "cli/json_writer.h"
#include "cli/text_table.h"
#include "cli/verb.h"
#include "core/media_types.h"
#include "core/strings.h"
#include "platform/doors.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace pelorin::cli {

namespace {

// The table as the workbench sees it; the system's doors live as long.
struct SystemTypes {
    SystemTypes() : doors(MakeSystemDoors()), workbench(JoinPath(doors.folders->Program(), "pelorin")) {
        table.SetPlace(JoinPath(doors.folders->Data(), "Vantrel/Pelorin/"), doors.associations.get(), workbench);
        table.LoadMediaTypes();
    }
    Doors doors;
    std::string workbench;
    CMediaTypeTable table;
};

std::string NameOf(const CMediaType& type) {
    return LoadText(KindInfo(type.m_nKind).typeName);
}

void WriteType(JsonWriter& json, const CMediaType& type) {
    json.BeginObject();
    json.Field("kind", type.m_nKind);
    json.Field("name", NameOf(type));
    json.Key("extensions");
    json.BeginArray();
    for (const auto& extension : type.m_arrExtensions) json.String(extension);
    json.EndArray();
    json.Field("class", type.m_strClass);
    json.Field("description", type.m_strDescription);
    json.Field("open_command", type.m_strOpenCommand);
    json.Field("edit_command", type.m_strEditCommand);
    json.Field("ours", type.IsOurs());
    json.EndObject();
}

} // namespace

VerbAction SetUpTypesList(VerbSetup& setup) {
    setup.Reports();
    return [](Run& run) {
        const SystemTypes types;
        JsonWriter json;
        TextTable table("rlll");
        json.BeginArray();
        for (const auto& type : types.table.GetTypes()) {
            WriteType(json, type);
            table.Row({std::to_string(type.m_nKind), fmt::format("{}", fmt::join(type.m_arrExtensions, ",")),
                       NameOf(type), Printable(type.m_strOpenCommand)});
        }
        json.EndArray();
        run.Print(run.Options().json ? json.Take() : table.Text());
    };
}

VerbAction SetUpTypesAssociate(VerbSetup& setup) {
    auto names = std::make_shared<std::vector<std::string>>();
    setup.Inputs("TYPE", *names, "ico, icns or icl");
    setup.Footer("Makes the workbench the program that opens files of these types, for this person.");
    return [names](Run& run) {
        bool icons = false, macIcons = false, libraries = false;
        const struct {
            std::string_view word;
            bool& wanted;
        } words[] = {{"ico", icons}, {"icns", macIcons}, {"icl", libraries}};
        for (const auto& name : *names) {
            bool known = false;
            for (const auto& row : words) {
                if (row.word == name) known = row.wanted = true;
            }
            if (!known) throw UsageError(fmt::format("\"{}\" is none of ico, icns, icl", name));
        }
        SystemTypes types;
        if (!FileExists(types.workbench)) return run.Fail(types.workbench, "the workbench is not installed here");
        run.Attempt("types", [&] {
            if (!types.table.Associate(*types.doors.associations, icons, macIcons, libraries)) {
                run.Fail("types", "the system refused a part of it; are its MIME tools installed?");
            }
        });
    };
}

} // namespace pelorin::cli
