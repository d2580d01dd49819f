#include "cli/icon_input.h"
#include "cli/json_writer.h"
#include "cli/text_table.h"
#include "cli/verb.h"

#include <fmt/format.h>

namespace pelorin::cli {

namespace {

void WriteIcon(JsonWriter& json, CIconGroup& group) {
    json.BeginObject();
    json.Field("name", group.m_strName);
    json.Key("formats");
    json.BeginArray();
    for (const auto* icon : IconsForDisplay(group)) {
        json.BeginObject();
        json.Field("width", icon->m_nWidth);
        json.Field("height", icon->m_nHeight);
        json.Field("bits", icon->ShownBitCount());
        json.Field("colors", icon->m_nColors);
        json.Field("compressed", icon->m_bCompressed);
        json.Field("bytes", std::int64_t{icon->StoredBytes()});
        json.Field("description", DescriptionOf(*icon, group));
        json.EndObject();
    }
    json.EndArray();
    json.EndObject();
}

// Each file leaves the memory before the next one comes in, and so does each icon of a library.
void ListAsJson(Run& run, const std::vector<std::string>& files) {
    JsonWriter json;
    json.BeginArray();
    run.ForEach(files, [&](const std::string& file) {
        const auto input = OpenIconInput(file);
        bool begun = false;
        const auto begin = [&] {
            if (std::exchange(begun, true)) return;
            json.BeginObject();
            json.Field("file", file);
            json.Field("kind", input.source->name);
            json.Key("icons");
            json.BeginArray();
        };
        const auto end = [&] {
            if (!begun) return;
            json.EndArray();
            json.EndObject();
            run.Print(json.Take());
        };
        try {
            VisitIcons(input, [&](CIconGroup& group, int, bool) {
                begin();
                WriteIcon(json, group);
                run.Print(json.Take());
                return true;
            });
            begin();
        } catch (const FileException&) {
            end();
            throw;
        }
        end();
    });
    json.EndArray();
    run.Print(json.Take());
}

std::string FormatsOneByOne(const std::string& file, CIconGroup& group) {
    auto text = fmt::format("{}  {}\n", Printable(file), group.GetSizeText());
    TextTable table("rllrl", "  ");
    int number = 0;
    for (const auto* icon : IconsForDisplay(group)) {
        table.Row({fmt::format("{}", ++number), DescriptionOf(*icon, group),
                   fmt::format("{}-bit", icon->ShownBitCount()), fmt::format("{} bytes", icon->StoredBytes()),
                   icon->m_bCompressed ? "PNG" : ""});
    }
    return text + table.Text();
}

std::string FormatsOnOneLine(CIconGroup& group, int number) {
    std::string formats;
    for (const auto* icon : IconsForDisplay(group)) {
        if (!formats.empty()) formats += ", ";
        formats += fmt::format("{}x{} {}", icon->m_nWidth, icon->m_nHeight,
                               DepthName(icon->ShownBitCount(), group.m_nInfo != 0));
    }
    const auto name = group.m_strName.empty() ? std::string() : Printable(group.m_strName) + "  ";
    return fmt::format("{:4}  {}{:<13} {}\n", number, name, group.GetSizeText(), formats);
}

void ListAsText(Run& run, const std::vector<std::string>& files) {
    run.ForEach(files, [&](const std::string& file) {
        const auto input = OpenIconInput(file);
        VisitIcons(input, [&](CIconGroup& group, int number, bool only) {
            if (only) {
                run.Print(FormatsOneByOne(file, group));
                return true;
            }
            if (number == 1 && files.size() > 1) run.Print(Printable(file) + ":\n");
            run.Print(FormatsOnOneLine(group, number));
            return true;
        });
    });
}

} // namespace

VerbAction SetUpList(VerbSetup& setup) {
    auto files = std::make_shared<std::vector<std::string>>();
    setup.Inputs("FILE", *files, "files that carry icons");
    setup.Reports();
    std::string kinds;
    for (const auto* source : AllIconSources()) kinds += " " + std::string(source->name);
    setup.Footer("Files that carry icons:" + kinds);
    return [files](Run& run) { run.Options().json ? ListAsJson(run, *files) : ListAsText(run, *files); };
}

VerbAction SetUpFormatList(VerbSetup& setup) {
    return SetUpList(setup);
}

} // namespace pelorin::cli
