#include "containers/mac_icon_rows.h"

#include "containers/icns_file.h"
#include "containers/icns_inspect.h"
#include "containers/mac_files.h"
#include "containers/mac_scan.h"

namespace pelorin {

namespace {

bool IsIcns(ByteSpan file) {
    return AsText(file).starts_with("icns");
}

// A name is enough for all but MacBinary: many files are called ".bin".
constexpr IconSource kSources[] = {
    {kKindIcns, "icns", IsIcns, VisitMacintoshIcons, InspectMacintoshFile, nullptr, true},
    {kKindRsrc, "rsrc", IsResourceFork, VisitMacintoshIcons, InspectMacintoshFile, nullptr, true},
    {kKindMacBinary, "macbinary", IsMacBinary, VisitMacintoshIcons, InspectMacintoshFile, nullptr, false},
    {kKindIcontainer, "icontainer", nullptr, VisitMacintoshIcons, InspectMacintoshFile, nullptr, true},
};

template <int Kind>
Bytes Build(const CIconGroup& icon, std::string_view path) {
    return BuildMacFile(icon, Kind, path);
}

constexpr IconFileForm kForms[] = {
    {kKindIcns, "icns", true, ReadMacintoshIcons, Build<kKindIcns>, IcnsAllows},
    {kKindRsrc, "rsrc", true, ReadMacintoshIcons, Build<kKindRsrc>, IcnsAllows},
    {kKindMacBinary, "bin", true, ReadMacintoshIcons, Build<kKindMacBinary>, IcnsAllows},
};

} // namespace

std::span<const IconSource> MacintoshIconSources() {
    return kSources;
}

std::span<const IconFileForm> MacintoshFileForms() {
    return kForms;
}

} // namespace pelorin
