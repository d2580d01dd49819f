#include "app/open_report.h"

#include "core/strings.h"

#include <iterator>

namespace pelorin {

namespace {

struct ActionRow {
    OpenAction action;
    std::string_view word, sentence;
};

constexpr ActionRow kActions[] = {
    {OpenAction::OpenWith, "open", ""},
    {OpenAction::ShellOpen, "system", "the system's own program for addresses"},
    {OpenAction::ExternalViewer, "viewer", "the program that is set for this kind of file"},
    {OpenAction::WebSearch, "search", "a search in the web"},
    {OpenAction::Transfer, "transfer", "a picture handed over by a plug-in"},
    {OpenAction::AskCreate, "create", "new, if you agree to make it"},
    {OpenAction::Tell, "refuse", ""},
    {OpenAction::Nothing, "nothing", "nothing opens files of this kind"},
};

const ActionRow& RowOf(OpenAction action) {
    return kActions[static_cast<std::size_t>(action)];
}

const ActionRow& RowOf(std::string_view word) {
    const ActionRow* row = kActions;
    while (row->word != word) ++row;
    return *row;
}

bool HasReceiver(OpenAction action) {
    return action == OpenAction::OpenWith || action == OpenAction::AskCreate;
}

} // namespace

OpenReport ReportOpen(std::string_view text, const OpenOptions& options, OpenHooks& hooks) {
    const auto plain = WithoutQuotes(text);
    const auto decision = DecideOpen(plain, options, hooks);
    OpenReport report;
    report.action = RowOf(decision.action).word;
    report.kind = decision.kind;
    if (HasReceiver(decision.action)) report.receiver = InfoOf(decision.receiver).name;
    if (decision.kind != kKindNone) report.type = LoadText(KindInfo(decision.kind).typeName);
    if (const auto* icons = dynamic_cast<const IconListContent*>(decision.content.get())) report.icons = icons->Count();
    if (decision.action == OpenAction::Tell) report.message = SplitAtBar(FormatText(decision.message, plain)).text;
    return report;
}

std::string DescribeOpen(const OpenReport& report) {
    std::string details;
    const auto add = [&details](std::string_view part) {
        if (part.empty()) return;
        details += details.empty() ? " (" : ", ";
        details += part;
    };
    add(report.type);
    if (report.icons >= 0) add(report.icons == 1 ? "1 icon" : std::to_string(report.icons) + " icons");
    const auto& row = RowOf(report.action);
    if (!report.receiver.empty() && !row.sentence.empty()) add(row.sentence);
    if (!details.empty()) details += ')';
    if (!report.message.empty()) return report.message;
    return (report.receiver.empty() ? std::string(row.sentence) : report.receiver) + details;
}

} // namespace pelorin
