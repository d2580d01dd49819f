#include "containers/icns_file.h"
#include "containers/mac_files.h"

#include <algorithm>

namespace pelorin {

namespace {

constexpr std::size_t kHeaderSize = 16, kDataArea = 0x100, kDataStart = kDataArea + 4;
constexpr std::uint32_t kTypeListOffset = 0x1C, kFirstId = 0xBFB9, kNoName = 0xFFFF;
// What programs leave in the two places that count in memory only.
constexpr std::uint32_t kNextMap = 0x534F5254, kFileReference = 0x0368;
constexpr std::uint32_t kMapHeaderSize = 28, kTypeSize = 8, kReferenceSize = 12;

/// Records of one type, which are neighbours once they are sorted.
struct TypeRun {
    std::string_view type;
    std::uint32_t count = 0;
};

std::vector<TypeRun> TypesOf(const std::vector<IcnsRecord>& records) {
    std::vector<TypeRun> types;
    for (const auto& record : records) {
        if (types.empty() || types.back().type != record.type) types.push_back({record.type});
        ++types.back().count;
    }
    return types;
}

void WriteMap(ByteWriter& fork, std::vector<IcnsRecord> records) {
    std::ranges::stable_sort(records, {}, [](const IcnsRecord& record) { return IcnsRank(record.type); });
    const auto types = TypesOf(records);
    const auto start = fork.Size();
    fork.Zeros(kHeaderSize); // comes at the end, when it is known
    fork.U32BE(kNextMap);
    fork.U16BE(kFileReference);
    fork.U16BE(0);
    fork.U16BE(kTypeListOffset);
    const auto nameListField = fork.Size();
    fork.U16BE(0);
    fork.U16BE(static_cast<std::uint32_t>(types.size()) - 1);
    auto references = 2 + static_cast<std::uint32_t>(types.size()) * kTypeSize;
    for (const auto& type : types) {
        fork.Text(type.type);
        fork.U16BE(type.count - 1);
        fork.U16BE(references);
        references += type.count * kReferenceSize;
    }
    auto id = kFirstId;
    for (const auto& record : records) {
        fork.U16BE(id++);
        fork.U16BE(kNoName);
        fork.U32BE(static_cast<std::uint32_t>(record.position - kDataStart));
        fork.U32BE(0);
    }
    fork.PatchU16BE(nameListField, static_cast<std::uint32_t>(fork.Size() - start));
}

} // namespace

Bytes BuildResourceFork(const CIconGroup& icon) {
    ByteWriter fork;
    fork.Zeros(kDataStart);
    std::vector<IcnsRecord> records;
    if (!WriteIcnsFamily(icon, fork, &records)) return {};
    const auto map = fork.Size();
    fork.PatchU32BE(kDataArea, static_cast<std::uint32_t>(map - kDataStart));
    WriteMap(fork, std::move(records));
    for (const auto header : {std::size_t{0}, map}) {
        fork.PatchU32BE(header, static_cast<std::uint32_t>(kDataArea));
        fork.PatchU32BE(header + 4, static_cast<std::uint32_t>(map));
        fork.PatchU32BE(header + 8, static_cast<std::uint32_t>(map - kDataArea));
        fork.PatchU32BE(header + 12, static_cast<std::uint32_t>(fork.Size() - map));
    }
    return fork.Take();
}

bool IsResourceFork(ByteSpan file) {
    ByteReader r(file);
    const std::uint64_t data = r.U32BE(), map = r.U32BE(), dataLength = r.U32BE(), mapLength = r.U32BE();
    const bool inside = r.Ok() && data >= kHeaderSize && map >= kHeaderSize && data + dataLength <= file.size() &&
                        map + mapLength <= file.size() && mapLength > kMapHeaderSize;
    if (!inside || (map < data + dataLength && data < map + mapLength)) return false;
    const auto typeList = LoadU16BE(file.data() + map + 24), nameList = LoadU16BE(file.data() + map + 26);
    return typeList >= kMapHeaderSize && typeList < mapLength && nameList <= mapLength;
}

} // namespace pelorin
