#include "formats/iff.h"

#include "formats/iff_form.h"
#include "formats/packbits.h"
#include "formats/reader_support.h"
#include "pixel/visit_depth.h"

namespace pelorin {

namespace {

// The bytes of the rows, one after the other. Runs may go on over the end of a row.
class RowSource {
public:
    explicit RowSource(const IffForm& form) : m_in(form.body), m_packed(form.packed) {}
    RowSource(const RowSource&) = delete;
    RowSource& operator=(const RowSource&) = delete;

    bool Read(MutableByteSpan row) {
        for (auto& byte : row) byte = m_packed ? m_runs.Next() : m_in.U8();
        return m_in.Ok();
    }

private:
    ByteReader m_in;
    PackBitsReader m_runs{m_in};
    bool m_packed;
};

// The values of one row: indices, or colours with blue in the high bits as the planes have them.
void GatherRow(const IffForm& form, const Bytes& row, std::vector<std::uint32_t>& values) {
    if (form.chunky) {
        std::copy_n(row.begin(), values.size(), values.begin());
        return;
    }
    std::fill(values.begin(), values.end(), 0);
    for (int p = 0; p < form.planes; ++p) {
        const auto* plane = row.data() + form.PlaneBytes() * static_cast<std::size_t>(p);
        for (std::size_t x = 0; x < values.size(); ++x) {
            values[x] |= std::uint32_t{IndexAt<1>(plane, static_cast<int>(x))} << p;
        }
    }
}

// Hold-and-modify codes of a row become colours.
void ModifyRow(const IffForm& form, std::vector<std::uint32_t>& values) {
    const int dataBits = form.planes - 2;
    const auto dataMask = (1u << dataBits) - 1;
    constexpr int kShiftOfCode[] = {0, 0, 16, 8};
    Argb color = form.colors[0];
    for (auto& value : values) {
        const auto code = value >> dataBits, data = value & dataMask;
        if (code == 0) {
            color = data < form.colors.size() ? form.colors[data] : 0;
        } else {
            const auto wide = data << (8 - dataBits);
            const auto level = (wide | wide >> dataBits) & 255;
            color = (color & ~(0xFFu << kShiftOfCode[code])) | level << kShiftOfCode[code];
        }
        value = 0xFF000000u | color;
    }
}

void ColorRow(const IffForm& form, std::vector<std::uint32_t>& values) {
    if (form.holdAndModify) return ModifyRow(form, values);
    for (auto& value : values) {
        if (form.TrueColor()) {
            const auto alpha = form.planes == 32 ? value & 0xFF000000u : 0xFF000000u;
            value = alpha | (value & 255) << 16 | (value & 0xFF00) | (value >> 16 & 255);
        } else {
            value = 0xFF000000u | (value < form.colors.size() ? form.colors[value] : 0);
        }
    }
}

// The picture as planes or bytes have it, with the mask still beside it.
struct Decoded {
    DibBlock block;
    std::vector<bool> opaque; // empty: all of it
};

int TargetBits(const IffForm& form) {
    if (form.masking != IffMasking::None || form.planes == 32) return 32;
    if (form.TrueColor() || form.holdAndModify) return 24;
    return form.planes;
}

void WriteRow(const std::vector<std::uint32_t>& values, int bits, std::uint8_t* to) {
    for (int x = 0; x < static_cast<int>(values.size()); ++x) {
        const auto value = values[static_cast<std::size_t>(x)];
        switch (bits) {
        case 1: PutIndex<1>(to, x, value); break;
        case 4: PutIndex<4>(to, x, value); break;
        case 8: PutIndex<8>(to, x, value); break;
        case 32: StoreU32LE(to + std::ptrdiff_t{4} * x, value); break;
        default:
            StoreU16LE(to + std::ptrdiff_t{3} * x, static_cast<std::uint16_t>(value));
            to[std::ptrdiff_t{3} * x + 2] = static_cast<std::uint8_t>(value >> 16);
        }
    }
}

Decoded Decode(const IffForm& form, ProgressScope& progress) {
    Decoded result;
    result.block = CreateDIB(form.width, form.height, TargetBits(form));
    const DibRows rows(result.block);
    if (!rows) return {};
    const bool indexed = rows.BitCount() <= 8;
    RowSource source(form);
    Bytes row(form.RowBytes());
    std::vector<std::uint32_t> values(static_cast<std::size_t>(form.width));
    for (int y = 0; y < form.height; ++y) {
        if (!source.Read(row) || progress.StopAsked()) return {};
        GatherRow(form, row, values);
        if (form.HasMaskPlane()) {
            const auto* mask = row.data() + form.PlaneBytes() * static_cast<std::size_t>(form.planes);
            for (int x = 0; x < form.width; ++x) result.opaque.push_back(IndexAt<1>(mask, x) != 0);
        } else if (form.masking != IffMasking::None) {
            for (const auto value : values) result.opaque.push_back(value != form.transparent);
        }
        if (!indexed) ColorRow(form, values);
        WriteRow(values, rows.BitCount(), rows.PictureRow(y));
        progress.Step(static_cast<std::uint64_t>(y) + 1);
    }
    if (indexed) {
        auto table = form.colors;
        table.resize(256);
        SetDIBTable(result.block, table);
    }
    return result;
}

// Of the pixels that have the transparent index only those stay transparent that are joined to the edge.
void KeepJoinedToEdge(std::vector<bool>& opaque, std::size_t width, std::size_t height) {
    std::vector<bool> outside(opaque.size());
    std::vector<std::size_t> open;
    const auto visit = [&](std::size_t at) {
        if (opaque[at] || outside[at]) return;
        outside[at] = true;
        open.push_back(at);
    };
    for (std::size_t x = 0; x < width; ++x) visit(x), visit((height - 1) * width + x);
    for (std::size_t y = 0; y < height; ++y) visit(y * width), visit(y * width + width - 1);
    while (!open.empty()) {
        const auto at = open.back(), x = at % width;
        open.pop_back();
        if (x > 0) visit(at - 1);
        if (x + 1 < width) visit(at + 1);
        if (at >= width) visit(at - width);
        if (at + width < opaque.size()) visit(at + width);
    }
    for (std::size_t i = 0; i < opaque.size(); ++i) opaque[i] = !outside[i];
}

void ApplyMask(const IffForm& form, Decoded& picture) {
    if (picture.opaque.empty()) return;
    const auto width = static_cast<std::size_t>(form.width);
    if (form.masking == IffMasking::Lasso) {
        KeepJoinedToEdge(picture.opaque, width, static_cast<std::size_t>(form.height));
    }
    const DibRows rows(picture.block);
    for (std::size_t i = 0; i < picture.opaque.size(); ++i) {
        if (!picture.opaque[i]) rows.PictureRow(static_cast<int>(i / width))[i % width * 4 + 3] = 0;
    }
}

} // namespace

bool IsIff(ByteSpan file) {
    const auto text = AsText(file.first(std::min<std::size_t>(file.size(), 12)));
    return text.size() == 12 && text.starts_with("FORM") && (text.ends_with("ILBM") || text.ends_with("PBM "));
}

DibBlock ReadIff(ByteSpan file, const PictureRequest& request, PictureFacts& facts) {
    const auto form = FindIffForm(file);
    if (!form) return {};
    const auto bytes = form->RowBytes() * static_cast<std::size_t>(form->height);
    // Two bytes make at most 128.
    if (bytes / (form->packed ? 64 : 1) > form->body.size()) return {};

    ProgressScope progress(request.progress, ReadingText("IFF"), static_cast<std::uint64_t>(form->height));
    auto picture = Decode(*form, progress);
    if (!picture.block) return {};
    ApplyMask(*form, picture);
    facts.width = form->width;
    facts.height = form->height;
    facts.bits = form->planes;
    return DropEmptyAlpha(std::move(picture.block));
}

} // namespace pelorin
