// The scans of a JPEG and the tables that stand before each.
//
// A marker is FF and a byte; all but the shortest are followed by u16 length, counted from itself, and content:
//   DHT (C4)  tables of codes: u8 kind << 4 | number, 16 counts, symbols; kind 0 is for first coefficients
//   DQT (DB)  steps: u8 wide << 4 | number, 64 of u8 or u16, in the order of the coefficients in the file
//   DRI (DD)  u16 groups of blocks between restart markers
//   SOS (DA)  u8 components, for each u8 name and u8 table of first << 4 | of other coefficients; u8 first and u8 last
//             coefficient; u8 bits of them that have come << 4 | bits that are still to come. The data follow.
#pragma once

#include "formats/jpeg_codes.h"

namespace pelorin {

struct JpegScan {
    struct Part {
        int name = 0;
        unsigned firstCodes = 0, otherCodes = 0; ///< 0 to 3
    };
    std::array<Part, 4> parts;
    int count = 0; ///< of parts, 1 to 4
    int from = 0, to = 63, high = 0, low = 0;
};

class JpegScans {
public:
    using Steps = std::array<std::uint16_t, 64>; ///< in the file's order

    explicit JpegScans(ByteSpan file) : m_in(file) { m_in.Skip(2); }

    /// Passes over whatever data the cursor is in to the next scan; false at the end of the file and where it is
    /// broken.
    [[nodiscard]] bool Next(JpegScan& scan);
    /// False when the file is broken in a table or header.
    [[nodiscard]] bool Good() const { return m_good; }

    [[nodiscard]] ByteSpan Data() const { return m_in.All().subspan(m_in.Pos()); }
    void Pass(std::size_t data) { m_in.Skip(data); }

    // As they stand at this place of the file.
    [[nodiscard]] const JpegCodes& FirstCodes(unsigned number) const { return m_codes[0][number]; }
    [[nodiscard]] const JpegCodes& OtherCodes(unsigned number) const { return m_codes[1][number]; }
    /// Null when there are none of this number.
    [[nodiscard]] const Steps* StepsOf(unsigned number) const {
        return number < m_steps.size() && m_hasSteps[number] ? &m_steps[number] : nullptr;
    }
    [[nodiscard]] unsigned Restart() const { return m_restart; } ///< 0: no restarts

private:
    [[nodiscard]] int NextMarker();
    [[nodiscard]] bool ReadCodes(ByteReader in);
    [[nodiscard]] bool ReadSteps(ByteReader in);
    [[nodiscard]] static bool ReadScan(ByteReader in, JpegScan& scan);

    ByteReader m_in;
    bool m_good = true;
    std::array<std::array<JpegCodes, 4>, 2> m_codes;
    std::array<Steps, 4> m_steps{};
    std::array<bool, 4> m_hasSteps{};
    unsigned m_restart = 0;
};

} // namespace pelorin
