#include "base/files.h"
#include "base/text.h"
#include "cli/json_writer.h"
#include "cli/picture_io.h"
#include "cli/text_table.h"
#include "cli/verb.h"
#include "core/strings.h"
#include "formats/load_image.h"
#include "icon/icon_sources.h"

#include <fmt/format.h>

#include <map>

namespace pelorin::cli {

namespace {

struct FileInfo {
    std::string kind, typeName;
    std::size_t bytes = 0;
    bool damaged = false; ///< its icons cannot be opened
    IconFileReport report;
    std::string partWord; ///< what the parts of a picture are, "layer"; empty for other files
    std::vector<std::string> parts;
};

// An object is told of in full, also one without any image.
void InspectImageObject(ByteSpan file, FileInfo& info) {
    const auto object = ReadObjectInput(file);
    info.kind = "vio";
    auto& facts = info.report.facts;
    facts = {{"width", object.size.width}, {"height", object.size.height}};
    info.partWord = "image";
    for (const auto& image : object.images) info.parts.push_back(DecodeText(image.m_strName));
    for (const auto& [name, value] : DescribeVioInfo(object.info)) facts.emplace_back(name, DecodeText(value));
}

void InspectPicture(ByteSpan file, int kind, FileInfo& info) {
    if (IsVio(file)) return InspectImageObject(file, info);
    PictureFacts facts;
    if (!ReadPicture(file, kind, {}, facts))
        throw FileException("this is neither a file that carries icons nor a picture");
    info.kind = ToLower(facts.format);
    info.report.facts = {
        {"width", facts.width}, {"height", facts.height}, {"bits", facts.bits}, {"frames", facts.frames}};
    info.partWord = "layer";
    info.parts = facts.layers;
}

void CountIcons(ByteSpan file, const IconSource& source, FileInfo& info) {
    int icons = 0, formats = 0;
    info.damaged = !source.visit(file, [&](CIconGroup& group) {
        ++icons;
        formats += group.GetCount();
        return true;
    });
    info.report.facts.emplace_back("icons", icons);
    info.report.facts.emplace_back("formats", formats);
}

FileInfo Inspect(const std::string& path) {
    const auto view = FileView::Open(path);
    const int kind = path == "-" ? kKindNone : GetFileKind(path);
    FileInfo info;
    info.bytes = view.Data().size();
    const auto* source = FindIconSource(view.Data(), kind);
    const int known = source ? source->kind : kind;
    if (known != kKindNone) info.typeName = LoadText(KindInfo(known).typeName);
    if (!source) {
        InspectPicture(view.Data(), kind, info);
        return info;
    }
    info.kind = source->name;
    CountIcons(view.Data(), *source, info);
    if (source->inspect) source->inspect(view.Data(), info.report);
    if (kind != source->kind && kind != kKindNone) {
        info.report.oddities.push_back(fmt::format("the name says \"{}\"", LoadText(KindInfo(kind).typeName)));
    }
    return info;
}

void WriteJson(JsonWriter& json, const std::string& file, const FileInfo& info) {
    json.BeginObject();
    json.Field("file", file);
    json.Field("kind", info.kind);
    json.Field("type_name", info.typeName);
    json.Field("bytes", static_cast<std::int64_t>(info.bytes));
    json.Key("facts");
    json.BeginObject();
    // A name that comes again gets a number, as no key may stand twice.
    std::map<std::string, int> times;
    for (const auto& [name, text, isNumber] : info.report.facts) {
        const int time = ++times[name];
        json.Key(time == 1 ? name : fmt::format("{}_{}", name, time));
        isNumber ? json.Int(std::stoll(text)) : json.String(text);
    }
    if (!info.partWord.empty()) {
        json.Key(info.partWord + "s");
        json.BeginArray();
        for (const auto& part : info.parts) json.String(part);
        json.EndArray();
    }
    json.EndObject();
    json.Key("oddities");
    json.BeginArray();
    for (const auto& oddity : info.report.oddities) json.String(oddity);
    json.EndArray();
    json.EndObject();
}

std::string Text(const std::string& file, const FileInfo& info) {
    TextTable table("ll", "  ");
    table.Row({"kind", info.typeName.empty() ? info.kind : fmt::format("{} ({})", info.typeName, info.kind)});
    table.Row({"bytes", fmt::format("{}", info.bytes)});
    for (const auto& fact : info.report.facts) table.Row({ReplaceAll(fact.name, "_", " "), Printable(fact.text)});
    for (const auto& part : info.parts) table.Row({info.partWord, Printable(part)});
    for (const auto& oddity : info.report.oddities) table.Row({"odd", Printable(oddity)});
    return Printable(file) + "\n" + table.Text();
}

} // namespace

VerbAction SetUpInfo(VerbSetup& setup) {
    auto files = std::make_shared<std::vector<std::string>>();
    setup.Inputs("FILE", *files, "icon files, libraries, program files, pictures");
    setup.Reports();
    return [files](Run& run) {
        JsonWriter json;
        json.BeginArray();
        run.ForEach(*files, [&](const std::string& file) {
            const auto info = Inspect(file);
            if (run.Options().json) {
                WriteJson(json, file, info);
            } else {
                run.Print(Text(file, info));
            }
            if (info.damaged) throw FileException("it cannot be opened: an image is missing or damaged");
        });
        json.EndArray();
        if (run.Options().json) run.Print(json.Take());
    };
}

} // namespace pelorin::cli
