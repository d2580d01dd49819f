#include "cli/icon_input.h"
#include "cli/json_writer.h"
#include "cli/text_table.h"
#include "cli/verb.h"
#include "containers/icns_elements.h"

#include <fmt/format.h>

namespace pelorin::cli {

namespace {

std::string DescriptionOf(const IconOutline::Format& row, const IconOutline& icon) {
    return FormatDescription(row.format.width, row.format.height, row.format.bits, icon.macintosh);
}

// The elements of a Macintosh family that hold an image: "il32 l8mk"; empty in all other files.
std::string ElementsOf(const IconOutline::Format& row, const IconOutline& icon) {
    const auto* kind = icon.macintosh ? IcnsElementFor(row.format) : nullptr;
    if (!kind) return {};
    const auto* mask = IcnsMaskElement(kind->width, kind->height, kind->colorBits == 24 ? 8 : 1);
    return mask && mask != kind ? fmt::format("{} {}", kind->type, mask->type) : std::string(kind->type);
}

void WriteIcon(JsonWriter& json, const IconOutline& icon) {
    json.BeginObject();
    json.Field("name", icon.name);
    json.Key("formats");
    json.BeginArray();
    for (const auto& row : icon.formats) {
        json.BeginObject();
        json.Field("width", row.format.width);
        json.Field("height", row.format.height);
        json.Field("bits", row.format.bits);
        json.Field("colors", row.colors);
        json.Field("compressed", row.compressed);
        json.Field("bytes", std::int64_t{row.bytes});
        json.Field("description", DescriptionOf(row, icon));
        if (icon.macintosh) json.Field("elements", ElementsOf(row, icon));
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
            VisitOutlines(input, [&](const IconOutline& icon, int, bool) {
                begin();
                WriteIcon(json, icon);
                run.Print(json.Take());
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

std::string FormatsOneByOne(const std::string& file, const IconOutline& icon) {
    const auto name = icon.name.empty() ? std::string() : Printable(icon.name) + "  ";
    auto text = fmt::format("{}  {}{}\n", Printable(file), name, SizeTextOf(icon));
    TextTable table("rllrl", "  ");
    int number = 0;
    for (const auto& row : icon.formats) {
        table.Row({fmt::format("{}", ++number), DescriptionOf(row, icon), fmt::format("{}-bit", row.format.bits),
                   fmt::format("{} bytes", row.bytes), row.compressed ? "PNG" : ElementsOf(row, icon)});
    }
    return text + table.Text();
}

std::string FormatsOnOneLine(const IconOutline& icon, int number) {
    std::vector<IconFormat> formats;
    for (const auto& row : icon.formats) formats.push_back(row.format);
    const auto name = icon.name.empty() ? std::string() : Printable(icon.name) + "  ";
    return fmt::format("{:4}  {}{:<13} {}\n", number, name, SizeTextOf(icon), FormatsText(formats, icon.macintosh));
}

void ListAsText(Run& run, const std::vector<std::string>& files) {
    run.ForEach(files, [&](const std::string& file) {
        const auto input = OpenIconInput(file);
        bool any = false;
        VisitOutlines(input, [&](const IconOutline& icon, int number, bool only) {
            any = true;
            if (only) {
                run.Print(FormatsOneByOne(file, icon));
                return;
            }
            if (number == 1 && files.size() > 1) run.Print(Printable(file) + ":\n");
            run.Print(FormatsOnOneLine(icon, number));
        });
        if (!any) run.Print(NoIconsLine(file, input.source));
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
