#include "containers/icns_rle.h"

namespace pelorin {

namespace {

constexpr std::size_t kShortestRun = 3, kLargestPacket = 128;
constexpr std::uint8_t kRunBit = 0x80;

// Packets back to front: bytes first, their control byte behind.
class BackwardPackets {
public:
    explicit BackwardPackets(std::size_t expected) { m_bytes.reserve(expected); }

    void AddRun(std::uint8_t value, std::size_t length) {
        if (length < kShortestRun) {
            for (; length > 0; --length) AddLiteral(value);
            return;
        }
        FlushLiterals();
        for (std::size_t part = 0; length > 0; length -= part) {
            part = std::min(length, kLargestPacket);
            if (part >= kShortestRun) {
                m_bytes.push_back(value);
                m_bytes.push_back(static_cast<std::uint8_t>((part - kShortestRun) | kRunBit));
            } else {
                m_bytes.insert(m_bytes.end(), part, value);
                m_bytes.push_back(static_cast<std::uint8_t>(part - 1));
            }
        }
    }

    void AppendReversedTo(Bytes& out) {
        FlushLiterals();
        out.insert(out.end(), m_bytes.rbegin(), m_bytes.rend());
    }

private:
    void AddLiteral(std::uint8_t value) {
        m_bytes.push_back(value);
        if (++m_literals == kLargestPacket) FlushLiterals();
    }
    void FlushLiterals() {
        if (m_literals == 0) return;
        m_bytes.push_back(static_cast<std::uint8_t>(m_literals - 1));
        m_literals = 0;
    }

    Bytes m_bytes;
    std::size_t m_literals = 0;
};

} // namespace

bool DecodeIcnsPlane(ByteReader& in, MutableByteSpan plane) {
    while (!plane.empty()) {
        const auto control = in.U8();
        const bool run = (control & kRunBit) != 0;
        const std::size_t count = (control & ~kRunBit) + (run ? kShortestRun : 1);
        const auto value = run ? in.U8() : std::uint8_t{0};
        if (!in.Ok()) return false;
        if (count > plane.size()) return true;
        if (run) {
            std::fill_n(plane.begin(), count, value);
        } else {
            const auto literals = in.Take(count);
            if (!in.Ok()) return false;
            std::copy(literals.begin(), literals.end(), plane.begin());
        }
        plane = plane.subspan(count);
    }
    return true;
}

void EncodeIcnsPlane(ByteSpan plane, Bytes& out) {
    BackwardPackets packets(plane.size() + 256);
    for (auto end = plane.size(); end > 0;) {
        const auto value = plane[end - 1];
        auto start = end - 1;
        while (start > 0 && plane[start - 1] == value) --start;
        packets.AddRun(value, end - start);
        end = start;
    }
    packets.AppendReversedTo(out);
}

} // namespace pelorin
