#include "formats/vnzb_file.h"

#include "base/file_error.h"
#include "base/trace.h"

#include <fmt/format.h>

namespace pelorin {

namespace {

bool WriteTraced(std::string_view function, std::string_view path, ByteSpan bytes) {
    try {
        WriteFileSafely(path, bytes);
        return true;
    } catch (const FileException& error) {
        Trace(fmt::format("[{}()]: Can't create file {}, error = {}\n", function, path, SystemErrorOf(error)));
        return false;
    }
}

} // namespace

bool UncompressVnzbToFile(ByteSpan block, std::string_view path) {
    const auto content = UncompressVnzb(block);
    return content && WriteTraced("UncompressVnzbToFile", path, *content);
}

bool UncompressVnzbToFile(ByteSpan block, SafeFile& file) {
    const auto content = UncompressVnzb(block);
    if (content) file.Write(*content);
    return content.has_value();
}

bool CompressToVnzbFile(ByteSpan content, std::string_view path) {
    const auto block = CompressVnzb(content);
    return !block.empty() && WriteTraced("CompressToVnzbFile", path, block);
}

bool CompressToVnzbFile(std::string_view source, std::string_view path) {
    const auto content = LoadFileToBuffer(source);
    return content && CompressToVnzbFile(*content, path);
}

std::optional<Bytes> LoadFileToBuffer(std::string_view path) {
    try {
        const auto view = FileView::Open(path);
        return Bytes(view.Data().begin(), view.Data().end());
    } catch (const FileException& error) {
        const int number = SystemErrorOf(error);
        // A file that is there and was opened failed for a reason of our own: it is too large, or a folder.
        const auto what = number == 0 ? "READ whole" : "OPEN";
        Trace(fmt::format("[LoadFileToBuffer()]: Can't {} file {}, error = {}\n", what, path, number));
        return {};
    }
}

} // namespace pelorin
