#include "containers/icns_inspect.h"

#include "containers/icns_file.h"
#include "containers/mac_scan.h"
#include "formats/jpeg2000.h"
#include "formats/png.h"

#include <fmt/format.h>

#include <set>

namespace pelorin {

namespace {

// Files with more families than a person reads are told of by their first ones.
constexpr int kFamiliesTold = 20, kTagsTried = 200;
constexpr std::size_t kElementsTold = 100, kOdditiesTold = 40;

bool IsTypeName(std::string_view type) {
    return std::ranges::all_of(type, [](char c) { return c >= ' ' && c <= '~'; });
}

// What keeps an element from being read; empty when nothing does.
std::string TroubleWith(std::string_view type, ByteSpan payload) {
    const auto* kind = FindIcnsElement(type);
    if (!kind) return fmt::format("{} is not known here and is passed over", type);
    if (kind->coding == IcnsCoding::Jpeg2000 && !IsJpeg2000(payload))
        return fmt::format("{} holds {} instead of JPEG 2000", type, IsPng(payload) ? "a PNG" : "something");
    const auto wanted = kind->ColorBytes() + kind->MaskBytes();
    if (kind->coding == IcnsCoding::Plain && payload.size() != wanted)
        return fmt::format("{} has {} bytes instead of {}", type, payload.size(), wanted);
    return {};
}

void InspectFamily(ByteSpan file, std::size_t position, IconFileReport& report) {
    std::set<std::string_view> types;
    std::vector<std::string> elements;
    const auto family = file.subspan(position);
    const bool good = VisitIcnsElements(family, [&](std::string_view type, ByteSpan payload) {
        if (!IsTypeName(type)) return;
        if (elements.size() < kElementsTold) elements.push_back(fmt::format("{} {}", type, payload.size()));
        auto trouble = TroubleWith(type, payload);
        if (trouble.empty()) {
            types.insert(type);
        } else if (report.oddities.size() < kOdditiesTold) {
            report.oddities.push_back(std::move(trouble));
        }
    });
    if (!good) return;
    report.facts.emplace_back("family", fmt::format("at {}, {} bytes", position, IcnsLength(family)));
    report.facts.emplace_back("elements", fmt::format("{}", fmt::join(elements, ", ")));
    for (const auto type : types) {
        const auto& masks = FindIcnsElement(type)->masks;
        if (!masks[0].empty() && !types.contains(masks[0]) && !types.contains(masks[1]))
            report.oddities.push_back(fmt::format("{} has no mask and gives no image", type));
    }
}

} // namespace

void InspectMacintoshFile(ByteSpan file, IconFileReport& report) {
    int told = 0, tried = 0;
    const auto inspect = [&](std::size_t position) {
        const auto before = report.facts.size();
        InspectFamily(file, position, report);
        told += report.facts.size() > before ? 1 : 0;
        return told < kFamiliesTold && ++tried < kTagsTried;
    };
    bool tags = false;
    ScanForFamilies(file, [&](std::size_t position) {
        tags = true;
        return inspect(position);
    });
    if (tags) return;
    if (const auto position = FindIcnsFamily(file)) (void)inspect(*position);
}

} // namespace pelorin
