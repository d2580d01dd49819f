#include "icon/icon_sources.h"

#include "icon/ani_file.h"
#include "icon/ico_file.h"
#include "icon/ico_inspect.h"

#include <deque>

namespace pelorin {

namespace {

bool VisitIco(ByteSpan file, const IconVisitor& visitor) {
    CIconGroup group;
    if (!ReadIcoGroup(file, group)) return false;
    visitor(group);
    return true;
}

// A deque, so that rows that were handed out stay where they are while others are put in front.
std::deque<IconSource>& Sources() {
    static std::deque<IconSource> sources = {
        {kKindIco, "ico", [](ByteSpan file) { return IcoTypeOf(file) == kIcoTypeIcon; }, VisitIco, InspectIco},
        {kKindCur, "cur", [](ByteSpan file) { return IcoTypeOf(file) == kIcoTypeCursor; }, VisitIco, InspectIco},
        {kKindAni, "ani", IsAni, VisitAniFrames, InspectAni},
    };
    return sources;
}

} // namespace

void AddIconSources(std::span<const IconSource> rows) {
    Sources().insert(Sources().begin(), rows.begin(), rows.end());
}

std::vector<const IconSource*> AllIconSources() {
    std::vector<const IconSource*> rows;
    for (const auto& row : Sources()) rows.push_back(&row);
    return rows;
}

const IconSource* FindIconSource(ByteSpan file, int kind) {
    const IconSource* matching = nullptr;
    const IconSource* untested = nullptr;
    for (const auto& row : Sources()) {
        const bool named = kind != kKindNone && row.kind == kind;
        if (named && (row.byName || row.matches == nullptr)) untested = &row;
        if (row.matches != nullptr && row.matches(file)) {
            if (named) return &row;
            if (matching == nullptr) matching = &row;
        }
    }
    return matching ? matching : untested;
}

} // namespace pelorin
