#include "app/open_report.h"
#include "app/system_hooks.h"
#include "cli/json_writer.h"
#include "cli/verb.h"
#include "core/settings.h"

namespace pelorin::cli {

namespace {

void WriteReport(JsonWriter& json, const std::string& text, const OpenReport& report) {
    json.BeginObject();
    json.Field("text", text);
    json.Field("action", report.action);
    json.Field("receiver", report.receiver);
    json.Field("kind", report.kind);
    json.Field("type", report.type);
    if (report.icons >= 0) json.Field("icons", report.icons);
    if (!report.message.empty()) json.Field("message", report.message);
    json.EndObject();
}

std::string OneLine(std::string text) {
    for (auto& c : text) {
        if (c == '\n') c = ' ';
    }
    return text;
}

} // namespace

VerbAction SetUpOpen(VerbSetup& setup) {
    auto texts = std::make_shared<std::vector<std::string>>();
    setup.Inputs("TEXT", *texts, "a file, a folder, a web address or a phrase");
    setup.Reports();
    setup.Footer("Says which document of the workbench would receive each text, and opens nothing.");
    return [texts](Run& run) {
        SystemHooks hooks;
        JsonWriter json;
        if (run.Options().json) json.BeginArray();
        run.ForEach(*texts, [&](const std::string& text) {
            const auto report = ReportOpen(text, {g_bBrowseExternally, true}, hooks);
            if (run.Options().json) WriteReport(json, text, report);
            if (!report.message.empty()) {
                run.Fail(text, OneLine(report.message));
            } else if (!run.Options().json) {
                run.Print(Printable(text) + "  " + DescribeOpen(report) + "\n");
            }
        });
        if (run.Options().json) {
            json.EndArray();
            run.Print(json.Take());
        }
    };
}

} // namespace pelorin::cli
