#include "containers/file_splice.h"

namespace pelorin {

void FileSplice::Replace(std::uint64_t begin, std::uint64_t end, Bytes bytes) {
    const auto at = std::upper_bound(m_edits.begin(), m_edits.end(), begin,
                                     [](std::uint64_t place, const Edit& edit) { return place < edit.begin; });
    m_edits.insert(at, Edit{begin, end, std::move(bytes)});
}

std::uint64_t FileSplice::NewPlace(std::uint64_t old) const {
    auto place = old;
    for (const auto& edit : m_edits) {
        if (edit.end <= old) place = place + edit.bytes.size() - (edit.end - edit.begin);
    }
    return place;
}

std::vector<ByteSpan> FileSplice::Pieces() const {
    std::vector<ByteSpan> pieces;
    std::size_t at = 0;
    const auto keepTo = [&](std::uint64_t end) {
        const auto stop = static_cast<std::size_t>(std::min<std::uint64_t>(end, m_file.size()));
        if (stop > at) pieces.push_back(m_file.subspan(at, stop - at));
    };
    for (const auto& edit : m_edits) {
        keepTo(edit.begin);
        if (!edit.bytes.empty()) pieces.push_back(edit.bytes);
        at = std::max(at, static_cast<std::size_t>(std::min<std::uint64_t>(edit.end, m_file.size())));
    }
    keepTo(m_file.size());
    return pieces;
}

} // namespace pelorin
