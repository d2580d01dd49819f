// PackBits, the run lengths of IFF and Photoshop files: a byte n below 128 is followed by n + 1 bytes as they are, one
// above 128 by a byte that stands for 257 - n of its kind; 128 is nothing. Two bytes make at most 128.
#pragma once

#include "base/bytes.h"

namespace pelorin {

/// The unpacked bytes, one after the other. Runs may go on over whatever the caller takes for an end.
class PackBitsReader {
public:
    explicit PackBitsReader(ByteReader& in) : m_in(in) {}

    /// 0, with the reader below failed, once the bytes have come to an end.
    std::uint8_t Next() {
        while (m_left == 0 && m_in.Ok()) {
            const int n = m_in.U8();
            if (n == 128) continue;
            m_literal = n < 128;
            m_left = m_literal ? n + 1 : 257 - n;
            if (!m_literal) m_value = m_in.U8();
        }
        --m_left;
        return m_literal ? m_in.U8() : m_value;
    }
    /// Forgets the rest of a run.
    void DropRun() { m_left = 0; }

private:
    ByteReader& m_in;
    bool m_literal = false;
    int m_left = 0;
    std::uint8_t m_value = 0;
};

} // namespace pelorin
