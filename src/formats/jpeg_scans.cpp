#include "formats/jpeg_scans.h"

namespace pelorin {

namespace {

constexpr int kDht = 0xC4, kDqt = 0xDB, kDri = 0xDD, kSos = 0xDA, kEoi = 0xD9;

// Without content: restarts, a reserved one, and padding.
bool StandsAlone(int marker) {
    return (marker >= 0xD0 && marker <= 0xD8) || marker == 0x01;
}

} // namespace

// Bytes that are no marker are data, or rubbish that is not minded.
int JpegScans::NextMarker() {
    for (;;) {
        const auto rest = Data();
        const auto* found =
            rest.empty() ? nullptr : static_cast<const std::uint8_t*>(std::memchr(rest.data(), 0xFF, rest.size()));
        if (!found) return kEoi;
        m_in.Skip(static_cast<std::size_t>(found - rest.data()) + 1);
        while (!m_in.AtEnd() && Data()[0] == 0xFF) m_in.Skip(1);
        if (m_in.AtEnd()) return kEoi;
        const int marker = m_in.U8();
        if (marker != 0 && !StandsAlone(marker)) return marker;
    }
}

bool JpegScans::Next(JpegScan& scan) {
    while (m_good) {
        const int marker = NextMarker();
        if (marker == kEoi) return false;
        const std::uint64_t length = m_in.U16BE();
        const ByteReader content(length < 2 ? ByteSpan() : m_in.Take(length - 2));
        m_good = m_in.Ok() && length >= 2;
        if (!m_good) break;
        if (marker == kSos) {
            m_good = ReadScan(content, scan);
            return m_good;
        }
        if (marker == kDht) m_good = ReadCodes(content);
        if (marker == kDqt) m_good = ReadSteps(content);
        if (marker == kDri) {
            m_good = length == 4;
            m_restart = ByteReader(content).U16BE();
        }
    }
    return false;
}

bool JpegScans::ReadCodes(ByteReader in) {
    while (in.Ok() && !in.AtEnd()) {
        const unsigned which = in.U8();
        if ((which & ~0x13u) != 0) return false;
        auto& codes = m_codes[which >> 4][which & 3];
        std::size_t count = 0;
        for (std::size_t length = 1; length <= 16; ++length) count += codes.counts[length] = in.U8();
        const auto symbols = in.Take(count);
        if (!in.Ok() || count > codes.symbols.size()) return false;
        codes.symbols = {};
        std::copy(symbols.begin(), symbols.end(), codes.symbols.begin());
        codes.there = true;
    }
    return in.Ok();
}

bool JpegScans::ReadSteps(ByteReader in) {
    while (in.Ok() && !in.AtEnd()) {
        const unsigned which = in.U8();
        if ((which & 15) > 3) return false;
        m_hasSteps[which & 3] = true;
        for (auto& step : m_steps[which & 3]) step = which >> 4 != 0 ? in.U16BE() : in.U8();
    }
    return in.Ok();
}

bool JpegScans::ReadScan(ByteReader in, JpegScan& scan) {
    scan.count = in.U8();
    if (scan.count < 1 || scan.count > 4) return false;
    for (int i = 0; i < scan.count; ++i) {
        auto& part = scan.parts[static_cast<std::size_t>(i)];
        part.name = in.U8();
        const unsigned tables = in.U8();
        part.firstCodes = tables >> 4;
        part.otherCodes = tables & 15;
        if (part.firstCodes > 3 || part.otherCodes > 3) return false;
    }
    scan.from = in.U8();
    scan.to = in.U8();
    const int bits = in.U8();
    scan.high = bits >> 4;
    scan.low = bits & 15;
    return in.Ok() && in.AtEnd() && scan.from <= scan.to && scan.to < 64;
}

} // namespace pelorin
