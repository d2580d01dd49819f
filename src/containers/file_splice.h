// A changed file as the old one with parts cut out and put in, so that what does not change is never copied in memory
// and every place in the file can be carried over to its new one.
#pragma once

#include "base/bytes.h"

#include <string_view>

namespace pelorin {

class FileSplice {
public:
    explicit FileSplice(ByteSpan file) : m_file(file) {}

    /// Puts `bytes` in the place of [begin, end) of the old file; begin == end inserts before `begin`. Edits do not
    /// overlap; those at one place stand in the order of the calls.
    void Replace(std::uint64_t begin, std::uint64_t end, Bytes bytes);

    /// Where a byte of the old file stands in the new one. What is inserted before a byte moves it.
    [[nodiscard]] std::uint64_t NewPlace(std::uint64_t old) const;

    /// The new file in pieces, in order. The spans live as long as this object and the old file.
    [[nodiscard]] std::vector<ByteSpan> Pieces() const;

private:
    struct Edit {
        std::uint64_t begin, end;
        Bytes bytes;
    };
    ByteSpan m_file;
    std::vector<Edit> m_edits; // by place
};

} // namespace pelorin
