#include "base/text.h"
#include "cli/json_writer.h"
#include "cli/picture_io.h"
#include "cli/text_table.h"
#include "cli/verb.h"

#include <fmt/format.h>

namespace pelorin::cli {

namespace {

void WriteFacts(JsonWriter& json, const std::string& file, const PictureFacts& facts) {
    json.BeginObject();
    json.Field("file", file);
    json.Field("format", std::string_view(facts.format));
    json.Field("width", facts.width);
    json.Field("height", facts.height);
    json.Field("bits", facts.bits);
    json.Field("frames", facts.frames);
    json.Key("delays_ms");
    json.BeginArray();
    for (const int delay : facts.delaysMs) json.Int(delay);
    json.EndArray();
    json.Key("layers");
    json.BeginArray();
    for (const auto& layer : facts.layers) json.String(layer);
    json.EndArray();
    json.EndObject();
}

void ListAsJson(Run& run, const std::vector<std::string>& files) {
    JsonWriter json;
    json.BeginArray();
    run.ForEach(files, [&](const std::string& file) {
        WriteFacts(json, file, ReadPictureFacts(file));
        run.Print(json.Take());
    });
    json.EndArray();
    run.Print(json.Take());
}

void ListAsText(Run& run, const std::vector<std::string>& files) {
    TextTable table("llrrl");
    run.ForEach(files, [&](const std::string& file) {
        const auto facts = ReadPictureFacts(file);
        std::string parts;
        if (facts.frames > 1) parts = Counted(facts.frames, "frame");
        if (!facts.layers.empty()) {
            if (!parts.empty()) parts += ", ";
            parts += Counted(facts.layers.size(), "layer") + ":";
            for (const auto& layer : facts.layers) parts += fmt::format(" \"{}\"", Printable(layer));
        }
        table.Row({Printable(file), std::string(facts.format), fmt::format("{}x{}", facts.width, facts.height),
                   fmt::format("{}-bit", facts.bits), parts});
    });
    run.Print(table.Text());
}

} // namespace

VerbAction SetUpImageList(VerbSetup& setup) {
    auto files = std::make_shared<std::vector<std::string>>();
    setup.Inputs("FILE", *files, "pictures of any format that is read");
    setup.Reports();
    return [files](Run& run) { run.Options().json ? ListAsJson(run, *files) : ListAsText(run, *files); };
}

} // namespace pelorin::cli
