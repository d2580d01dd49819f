#include "containers/stuffit.h"

#include "base/files.h"
#include "containers/mac_crc.h"
#include "containers/mac_files.h"
#include "containers/mac_scan.h"

namespace pelorin {

namespace {

constexpr std::size_t kArchiveHeader = 22, kEntryHeader = 112, kHeaderCrc = 110;
constexpr std::uint32_t kDate = 0xB256493A;
constexpr std::uint32_t kFinderFlags = 0x0500; // seen by the Finder, with an icon of its own

// A fork as a span cut to the file; MacBinary pads both to its unit.
ByteSpan ForkAt(ByteSpan file, std::size_t at, std::size_t length) {
    ByteReader r(file);
    r.Seek(at);
    return r.TakeUpTo(length);
}

void WriteEntry(ByteWriter& archive, const StuffItEntry& entry) {
    const auto name = std::string_view(entry.name).substr(0, 63);
    ByteWriter header(kEntryHeader);
    header.U16BE(0);
    header.U8(static_cast<std::uint32_t>(name.size()));
    header.Text(name);
    header.Zeros(66 - header.Size());
    header.Text("iconVNPL");
    header.U16BE(kFinderFlags);
    header.U32BE(kDate);
    header.U32BE(kDate);
    for (int stored = 0; stored < 2; ++stored) {
        header.U32BE(static_cast<std::uint32_t>(entry.resourceFork.size()));
        header.U32BE(static_cast<std::uint32_t>(entry.dataFork.size()));
    }
    header.U16BE(StuffItCrc(entry.resourceFork));
    header.U16BE(StuffItCrc(entry.dataFork));
    header.Zeros(kHeaderCrc - header.Size());
    header.U16BE(StuffItCrc(header.View()));
    archive.Raw(header.View());
    archive.Raw(entry.resourceFork);
    archive.Raw(entry.dataFork);
}

} // namespace

std::optional<StuffItEntry> StuffItEntryOf(std::string_view path, ByteSpan file) {
    const auto bytes = [](ByteSpan span) { return Bytes(span.begin(), span.end()); };
    StuffItEntry entry{std::string(MacName(path)), {}, {}};
    const auto kind = GetFileKind(path);
    if (IsMacBinary(file) && file.size() >= kMacBinaryHeaderSize) {
        const std::size_t data = LoadU32BE(&file[83]), resource = LoadU32BE(&file[87]);
        const auto behindData =
            kMacBinaryHeaderSize + (data + kMacBinaryHeaderSize - 1) / kMacBinaryHeaderSize * kMacBinaryHeaderSize;
        entry.dataFork = bytes(ForkAt(file, kMacBinaryHeaderSize, data));
        entry.resourceFork = bytes(ForkAt(file, behindData, resource));
    } else if (AsText(file).starts_with("icns")) {
        entry.dataFork = bytes(file);
    } else if (kind == kKindRsrc || IsResourceFork(file)) {
        entry.resourceFork = bytes(file);
    } else {
        return {};
    }
    return entry;
}

Bytes BuildStuffIt(const std::vector<StuffItEntry>& entries) {
    ByteWriter archive;
    archive.Zeros(kArchiveHeader);
    std::uint32_t count = 0;
    for (const auto& entry : entries) {
        if (entry.resourceFork.empty() && entry.dataFork.empty()) continue;
        WriteEntry(archive, entry);
        ++count;
    }
    if (count == 0 || count > UINT16_MAX || archive.Size() > UINT32_MAX) return {};
    ByteWriter header(kArchiveHeader);
    header.Text("SIT!");
    header.U16BE(count);
    header.U32BE(static_cast<std::uint32_t>(archive.Size()));
    header.Text("rLau");
    header.U8(1);
    header.Zeros(kArchiveHeader - header.Size());
    auto bytes = archive.Take();
    std::copy(header.View().begin(), header.View().end(), bytes.begin());
    return bytes;
}

} // namespace pelorin
