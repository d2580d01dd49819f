#include "base/files.h"
#include "containers/icns_file.h"
#include "containers/mac_crc.h"
#include "containers/mac_files.h"
#include "containers/mac_scan.h"
#include "core/user_prompt.h"

#include <new>

namespace pelorin {

namespace {

constexpr std::size_t kLongestName = 63, kCrcOffset = 124;
constexpr std::uint32_t kFinderFlags = 5, kVersion = 0x81;
// All files carry this one date.
constexpr std::uint32_t kDate = 0x7C25B080;

Bytes MacBinaryHeader(std::string_view name, std::size_t forkSize) {
    ByteWriter header(kMacBinaryHeaderSize);
    header.U8(0);
    header.U8(static_cast<std::uint32_t>(name.size()));
    header.Text(name);
    header.Zeros(65 - header.Size());
    header.Text("rsrcVPLS");
    header.U8(kFinderFlags);
    header.Zeros(83 - header.Size());
    header.U32BE(0);
    header.U32BE(static_cast<std::uint32_t>(forkSize));
    header.U32BE(kDate);
    header.U32BE(kDate);
    header.Zeros(102 - header.Size());
    header.Text("mBIN");
    header.Zeros(122 - header.Size());
    header.U8(kVersion);
    header.U8(kVersion);
    header.U16BE(MacBinaryCrc(header.View().first(kCrcOffset)));
    header.Zeros(kMacBinaryHeaderSize - header.Size());
    return header.Take();
}

} // namespace

std::string_view MacName(std::string_view path) {
    auto name = StemOf(path);
    if (name.size() <= kLongestName) return name;
    auto length = kLongestName;
    // Not within a character.
    while (length > 0 && (static_cast<unsigned char>(name[length]) & 0xC0) == 0x80) --length;
    return name.substr(0, length);
}

Bytes BuildIcnsFile(const CIconGroup& icon) {
    ByteWriter file;
    return WriteIcnsFamily(icon, file) ? file.Take() : Bytes();
}

Bytes BuildMacBinary(const CIconGroup& icon, std::string_view path) {
    const auto fork = BuildResourceFork(icon);
    if (fork.empty()) return {};
    ByteWriter file(fork.size() + 2 * kMacBinaryHeaderSize);
    file.Raw(MacBinaryHeader(MacName(path), fork.size()));
    file.Raw(fork);
    file.AlignTo(kMacBinaryHeaderSize);
    return file.Take();
}

Bytes BuildMacFile(const CIconGroup& icon, int kind, std::string_view path) {
    if (kind == kKindMacBinary) return BuildMacBinary(icon, path);
    return kind == kKindRsrc ? BuildResourceFork(icon) : BuildIcnsFile(icon);
}

bool SaveAsMacFile(const CIconGroup& icon, const std::string& path, UserPrompt* prompt) {
    try {
        const auto file = BuildMacFile(icon, GetFileKind(path), path);
        if (file.empty()) {
            if (prompt) prompt->Tell(PromptIcon::Stop, str::kNoMacImages);
            return false;
        }
        WriteFileSafely(path, file);
        return true;
    } catch (const FileException& e) {
        if (prompt) prompt->Tell(PromptIcon::Stop, str::kErrorWritingFile, path, e.what());
        return false;
    } catch (const std::bad_alloc&) {
        return false;
    }
}

} // namespace pelorin
