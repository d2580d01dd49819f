#include "base/archive.h"

#include "base/text.h"

namespace pelorin {

void ArchiveWriter::String(std::string_view utf8) {
    const auto length = utf8.size();
    if (length < 0xFF) {
        m_out.U8(static_cast<std::uint32_t>(length));
    } else {
        m_out.U8(0xFF);
        if (length < 0xFFFF) {
            m_out.U16LE(static_cast<std::uint32_t>(length));
        } else {
            m_out.U16LE(0xFFFF);
            m_out.U32LE(static_cast<std::uint32_t>(length));
        }
    }
    m_out.Text(utf8);
}

std::string ArchiveReader::String() {
    std::uint64_t length = U8();
    if (length == 0xFF) length = U16();
    if (length == 0xFFFF) length = U32();
    return DecodeText(AsText(Raw(length)));
}

} // namespace pelorin
