#include "formats/jpeg_eighth.h"

#include "formats/jpeg_colors.h"
#include "formats/jpeg_plane.h"
#include "formats/jpeg_scans.h"

namespace pelorin {

namespace {

// As many as the library is allowed.
constexpr int kMaxScans = 100;
// Blocks in a group; a file with more is broken.
constexpr std::size_t kMaxGroup = 10;

struct Component {
    int name = 0;
    unsigned stepsNumber = 0;
    std::size_t across = 1, down = 1;  ///< blocks in a group
    std::size_t columns = 0, rows = 0; ///< blocks of a scan that has this component alone
    JpegPlane plane;
    bool come = false; ///< first coefficients have
    // Of the scan at hand.
    JpegCodeTable firstCodes, otherCodes;
    std::int16_t last = 0;

    std::int16_t Last(int difference) {
        last = static_cast<std::int16_t>(last + difference);
        return last;
    }
};

class Decoder {
public:
    [[nodiscard]] bool Prepare(const jpeg_decompress_struct& codec);
    [[nodiscard]] bool Decode(ByteSpan file);
    [[nodiscard]] DibBlock Picture();

private:
    [[nodiscard]] bool PrepareComponent(const jpeg_decompress_struct& codec, int index);
    [[nodiscard]] Component* FindComponent(const JpegScan::Part& part);
    [[nodiscard]] bool PrepareScan(const JpegScan& scan);
    [[nodiscard]] bool PrepareComponents(const JpegScan& scan, const JpegScans& scans);
    [[nodiscard]] bool IsWanted() const {
        return !m_progressive || m_band.from == 0 || m_slots[0].component->plane.Four();
    }
    [[nodiscard]] bool DecodeScan(ByteSpan data, unsigned restart);
    template <class Read>
    [[nodiscard]] bool ReadBlocks(ByteSpan data, unsigned restart, Read read);
    void BeginPiece();
    [[nodiscard]] bool AllHaveCome() const {
        return std::all_of(m_components.begin(), m_components.end(), [](const auto& c) { return c.come; });
    }
    [[nodiscard]] const std::uint8_t* PlaneRow(std::size_t index, std::size_t y, Bytes& room) const;

    Size m_full, m_size;
    bool m_progressive = false, m_inverted = false;
    J_COLOR_SPACE m_space = JCS_UNKNOWN;
    std::size_t m_maxAcross = 1, m_maxDown = 1;
    std::vector<Component> m_components;

    // The scan at hand.
    struct Slot {
        Component* component = nullptr;
        std::size_t across = 1, down = 1; ///< the component's blocks in a group
        std::size_t x = 0, y = 0;
    };
    std::vector<Slot> m_slots; ///< one a block of a group
    JpegBand m_band;
    unsigned m_blocksWithout = 0;
    JpegBits m_bits;
};

std::size_t Pieces(std::size_t length, std::size_t piece) {
    return (length + piece - 1) / piece;
}

bool Decoder::PrepareComponent(const jpeg_decompress_struct& codec, int index) {
    const auto& info = codec.comp_info[index];
    auto& c = m_components[static_cast<std::size_t>(index)];
    c.name = info.component_id;
    c.stepsNumber = static_cast<unsigned>(info.quant_tbl_no);
    c.across = static_cast<std::size_t>(info.h_samp_factor);
    c.down = static_cast<std::size_t>(info.v_samp_factor);
    if (m_maxAcross % c.across != 0 || m_maxDown % c.down != 0) return false;
    const auto thinAcross = m_maxAcross / c.across, thinDown = m_maxDown / c.down;
    const bool four = thinAcross % 2 == 0 && thinDown % 2 == 0;
    if (four && thinAcross % 4 == 0 && thinDown % 4 == 0) return false;
    c.columns = Pieces(Pieces(codec.image_width * c.across, m_maxAcross), 8);
    c.rows = Pieces(Pieces(codec.image_height * c.down, m_maxDown), 8);
    c.plane.Open(Pieces(codec.image_width, 8 * m_maxAcross) * c.across,
                 Pieces(codec.image_height, 8 * m_maxDown) * c.down, four, m_progressive);
    return true;
}

bool Decoder::Prepare(const jpeg_decompress_struct& codec) {
    m_progressive = codec.progressive_mode;
    m_space = codec.jpeg_color_space;
    m_inverted = codec.saw_Adobe_marker;
    const int wanted = m_space == JCS_GRAYSCALE                     ? 1
                       : m_space == JCS_YCbCr || m_space == JCS_RGB ? 3
                       : m_space == JCS_CMYK || m_space == JCS_YCCK ? 4
                                                                    : 0;
    if (codec.arith_code || codec.data_precision != 8 || codec.num_components != wanted) return false;
    m_full = {static_cast<int>(codec.image_width), static_cast<int>(codec.image_height)};
    m_size = {(m_full.width + 7) / 8, (m_full.height + 7) / 8};
    m_maxAcross = static_cast<std::size_t>(codec.max_h_samp_factor);
    m_maxDown = static_cast<std::size_t>(codec.max_v_samp_factor);
    m_components.resize(static_cast<std::size_t>(wanted));
    for (int i = 0; i < wanted; ++i) {
        if (!PrepareComponent(codec, i)) return false;
    }
    return true;
}

// The component of a scan's part; null when there is none, or its turn is another.
Component* Decoder::FindComponent(const JpegScan::Part& part) {
    const auto found = std::find_if(m_components.begin(), m_components.end(),
                                    [&](const auto& known) { return known.name == part.name; });
    if (found == m_components.end()) return nullptr;
    const bool twice =
        std::any_of(m_slots.begin(), m_slots.end(), [&](const auto& slot) { return slot.component == &*found; });
    // First come first coefficients; the whole of a component comes once.
    const bool begins = !m_progressive || (m_band.from == 0 && !m_band.more);
    const bool early = !found->come && !begins, late = found->come && !m_progressive;
    return twice || early || late ? nullptr : &*found;
}

bool Decoder::PrepareScan(const JpegScan& scan) {
    const bool alone = scan.count == 1;
    m_slots.clear();
    m_band = JpegBand{};
    if (m_progressive) {
        m_band = {scan.from, scan.to, scan.high != 0, scan.low};
        if (scan.from == 0 ? scan.to != 0 : !alone) return false;
        if (scan.low > 13 || (scan.high != 0 && scan.low != scan.high - 1)) return false;
    }
    for (std::size_t i = 0; i < static_cast<std::size_t>(scan.count); ++i) {
        auto* c = FindComponent(scan.parts[i]);
        if (!c) return false;
        const auto across = alone ? 1 : c->across, down = alone ? 1 : c->down;
        for (std::size_t at = 0; at < across * down; ++at)
            m_slots.push_back({c, across, down, at % across, at / across});
    }
    return m_slots.size() <= kMaxGroup;
}

bool Decoder::PrepareComponents(const JpegScan& scan, const JpegScans& scans) {
    for (std::size_t i = 0; i < static_cast<std::size_t>(scan.count); ++i) {
        const auto& part = scan.parts[i];
        auto& c = *std::find_if(m_components.begin(), m_components.end(),
                                [&](const auto& known) { return known.name == part.name; });
        const bool firsts = m_band.from == 0 && !m_band.more, others = m_band.to > 0;
        if (firsts && !c.firstCodes.Build(scans.FirstCodes(part.firstCodes), true)) return false;
        if (others && !c.otherCodes.Build(scans.OtherCodes(part.otherCodes), false)) return false;
        if (others && !m_progressive && !c.plane.Four()) c.otherCodes.BuildSteps();
        if (c.come) continue;
        const auto* steps = scans.StepsOf(c.stepsNumber);
        if (!steps) return false;
        c.plane.SetSteps(*steps);
        c.come = true;
    }
    return true;
}

bool Decoder::Decode(ByteSpan file) {
    JpegScans scans(file);
    JpegScan scan;
    for (int count = 0; scans.Next(scan); ++count) {
        if (count == kMaxScans || !PrepareScan(scan)) return false;
        if (!IsWanted()) continue;
        if (!PrepareComponents(scan, scans) || !DecodeScan(scans.Data(), scans.Restart())) return false;
        scans.Pass(m_bits.Taken());
        if (!m_progressive && AllHaveCome()) break;
    }
    return scans.Good() && AllHaveCome();
}

void Decoder::BeginPiece() {
    m_blocksWithout = 0;
    for (auto& slot : m_slots) slot.component->last = 0;
}

// `read` takes the bits, the component, and the block's column and row.
template <class Read>
bool Decoder::ReadBlocks(ByteSpan data, unsigned restart, Read read) {
    const auto& only = *m_slots[0].component;
    const bool alone = m_slots.size() == 1;
    const auto groupsAcross = alone ? only.columns : only.plane.Columns() / only.across;
    const auto groupsDown = alone ? only.rows : Pieces(static_cast<std::size_t>(m_full.height), 8 * m_maxDown);
    m_bits.Open(data);
    BeginPiece();
    unsigned left = restart;
    for (std::size_t y = 0; y < groupsDown; ++y) {
        for (std::size_t x = 0; x < groupsAcross; ++x) {
            if (restart != 0 && left-- == 0) {
                if (!m_bits.Restart()) return false;
                BeginPiece();
                left = restart - 1;
            }
            if (!m_bits.Reserve()) return false;
            auto bits = m_bits.Window();
            for (const auto& slot : m_slots) {
                auto& c = *slot.component;
                if (!read(bits, c, x * slot.across + slot.x, y * slot.down + slot.y)) return false;
            }
            m_bits.Window() = bits;
        }
    }
    return m_bits.Reserve();
}

bool ReadFirst(JpegWindow& bits, Component& c) {
    int difference = 0;
    const bool good = ReadJpegFirst(bits, c.firstCodes, difference);
    c.Last(difference);
    return good;
}

// A block that gives four samples.
bool ReadWhole(JpegWindow& bits, Component& c, std::size_t x, std::size_t y) {
    if (!ReadFirst(bits, c)) return false;
    JpegQuarters sums{};
    bool flat = true;
    const bool good = ReadJpegOthers(bits, c.otherCodes, [&](std::size_t k, int value) {
        c.plane.Add(sums, k, value);
        flat = false;
    });
    if (flat) {
        c.plane.PutFlat(x, y, c.last);
    } else {
        c.plane.Add(sums, 0, c.last);
        c.plane.Put(x, y, sums);
    }
    return good;
}

bool Decoder::DecodeScan(ByteSpan data, unsigned restart) {
    if (!m_progressive) {
        return ReadBlocks(data, restart, [](JpegWindow& bits, Component& c, std::size_t x, std::size_t y) {
            if (c.plane.Four()) return ReadWhole(bits, c, x, y);
            int difference = 0;
            const bool good = ReadJpegFirstAlone(bits, c.firstCodes, c.otherCodes, difference);
            c.plane.First(x, y) = c.Last(difference);
            return good;
        });
    }
    if (m_band.from > 0) {
        return ReadBlocks(data, restart, [this](JpegWindow& bits, Component& c, std::size_t x, std::size_t y) {
            return ReadJpegBand(bits, c.otherCodes, m_band, m_blocksWithout, c.plane.Kept(x, y));
        });
    }
    return ReadBlocks(data, restart, [this](JpegWindow& bits, Component& c, std::size_t x, std::size_t y) {
        auto& first = c.plane.Four() ? c.plane.Kept(x, y)[0] : c.plane.First(x, y);
        if (m_band.more) {
            first = static_cast<std::int16_t>(first | static_cast<int>(bits.Take(1) << m_band.low));
            return true;
        }
        const bool good = ReadFirst(bits, c);
        first = static_cast<std::int16_t>(static_cast<unsigned>(c.last) << m_band.low);
        return good;
    });
}

// A row of the small picture; where the component has fewer samples, each stands for several pixels.
const std::uint8_t* Decoder::PlaneRow(std::size_t index, std::size_t y, Bytes& room) const {
    const auto& c = m_components[index];
    const std::size_t side = c.plane.Four() ? 2 : 1;
    const auto across = m_maxAcross / (c.across * side), down = m_maxDown / (c.down * side);
    const auto* row = c.plane.Row(y / down);
    if (across == 1) return row;
    for (std::size_t x = 0; x < room.size(); ++x) room[x] = row[x / across];
    return room.data();
}

DibBlock Decoder::Picture() {
    auto block = CreateDIB(m_size.width, m_size.height, 24);
    const DibRows rows(block);
    if (!rows) return {};
    for (auto& c : m_components) c.plane.Finish();
    std::array<Bytes, 4> room;
    room.fill(Bytes(static_cast<std::size_t>(m_size.width)));
    for (int y = 0; y < m_size.height; ++y) {
        std::array<const std::uint8_t*, 4> planes{};
        for (std::size_t i = 0; i < m_components.size(); ++i)
            planes[i] = PlaneRow(i, static_cast<std::size_t>(y), room[i]);
        PutJpegRow(m_space, planes, rows.PictureRow(y), m_size.width, m_inverted);
    }
    return block;
}

} // namespace

DibBlock ReadJpegEighth(ByteSpan file, const jpeg_decompress_struct& codec) {
    Decoder decoder;
    return decoder.Prepare(codec) && decoder.Decode(file) ? decoder.Picture() : DibBlock();
}

} // namespace pelorin
