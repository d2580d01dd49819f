#include "containers/ne_file.h"

#include "base/text.h"
#include "containers/icon_collector.h"
#include "containers/resource_tree.h"

namespace pelorin {

namespace {

constexpr std::uint16_t kNumber = 0x8000; // high bit of types and ids that are numbers

struct ResourceTable {
    bool ok = false;
    std::size_t end = 0; ///< place behind the part that was walked
};

ResourceTable WalkResourceTable(ByteSpan file, std::size_t place, PositionalIcons& icons, IconResources& out) {
    ByteReader in(file);
    in.Seek(place);
    const unsigned shift = in.U16LE();
    if (!in.Ok() || shift >= 17) return {};
    bool images = false, groups = false;
    while (!(images && groups)) {
        const auto type = in.U16LE();
        if (!in.Ok() || type == 0) break;
        const std::size_t count = in.U16LE();
        in.Skip(4);
        for (std::size_t i = 0; i < count && in.Ok(); ++i) {
            const auto offset = std::uint64_t{in.U16LE()} << shift, length = std::uint64_t{in.U16LE()} << shift;
            in.Skip(2);
            const int id = in.U16LE() & ~kNumber;
            in.Skip(4);
            if (!in.Ok()) break;
            if (type == (kNumber | kResourceIcon)) {
                out.idTable.emplace_back(id, 0);
                icons.AddImage(offset, length, id, 0);
            } else if (type == (kNumber | kResourceGroupIcon) && offset < file.size()) {
                icons.AddGroup(file.subspan(static_cast<std::size_t>(offset)), id, 0);
            }
        }
        images = images || type == (kNumber | kResourceIcon);
        groups = groups || type == (kNumber | kResourceGroupIcon);
    }
    return {true, in.Pos()};
}

bool IsLibraryNames(ByteReader in) {
    return AsText(in.Take(in.U8())) == kLibraryModule;
}

/// The icons' names. A program's table has a number of 2 bytes behind each name; that of the module's is 0 and ends
/// this reading, so that its other names are not taken for those of icons.
std::vector<std::string> ReadNames(ByteSpan file, std::size_t place, std::size_t tableEnd) {
    ByteReader in(file);
    in.Seek(place);
    if (place < tableEnd) {
        // Only the low 16 bits of a place further behind.
        ByteReader behind(file);
        behind.Seek(place + (tableEnd - place + 0xFFFF) / 0x10000 * 0x10000);
        if (IsLibraryNames(behind)) in = behind;
    }
    if (in.Take(in.U8()).empty()) return {};
    std::vector<std::string> names;
    while (const auto length = in.U8()) {
        const auto name = AsText(in.Take(length));
        if (!in.Ok()) break;
        names.push_back(name == kNoNameNe ? std::string() : DecodeText(name));
    }
    return names;
}

} // namespace

IconResources FindIconsInNe(ByteSpan file, std::size_t header) {
    IconResources out;
    out.mode = ProgramMode::NeFile;
    ByteReader in(file);
    in.Seek(header + 0x24);
    const std::size_t resources = in.U16LE(), names = in.U16LE();
    in.Seek(header + 0x3F);
    const int version = in.U8();
    if (!in.Ok() || version <= 2 || resources == 0) return out;
    PositionalIcons icons(file);
    const auto table = WalkResourceTable(file, header + resources, icons, out);
    if (!table.ok) return out;
    std::vector<std::string> texts;
    out.hasNamePlace = names != 0;
    if (out.hasNamePlace) texts = ReadNames(file, header + names, table.end);
    out.hasLibraryNames = !texts.empty();
    out.groups = icons.Finish(1, texts);
    return out;
}

} // namespace pelorin
