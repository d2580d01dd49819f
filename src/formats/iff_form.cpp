#include "formats/iff_form.h"

#include "formats/reader_support.h"

namespace pelorin {

namespace {

constexpr int kMaxNesting = 8;
constexpr std::uint32_t kHoldAndModify = 0x800, kHalfBrite = 0x80;

struct Chunk {
    std::string_view name;
    ByteReader bytes;
};

// The next chunk; one that says more than there is gets what there is, since lengths of FORMs are often wrong.
std::optional<Chunk> NextChunk(ByteReader& in) {
    if (in.Left() < 8) return {};
    const auto name = AsText(in.Take(4));
    const auto length = in.U32BE();
    const auto bytes = in.TakeUpTo(length);
    in.TakeUpTo(length & 1);
    return Chunk{name, ByteReader(bytes)};
}

struct RawForm {
    bool chunky = false;
    ByteReader header, colors, mode;
    ByteSpan body;
};

RawForm CollectChunks(ByteReader in, bool chunky) {
    RawForm raw;
    raw.chunky = chunky;
    raw.header.Fail();
    while (const auto chunk = NextChunk(in)) {
        if (chunk->name == "BMHD") raw.header = chunk->bytes;
        if (chunk->name == "CMAP") raw.colors = chunk->bytes;
        if (chunk->name == "CAMG") raw.mode = chunk->bytes;
        if (chunk->name == "BODY") {
            raw.body = chunk->bytes.All();
            break;
        }
    }
    return raw;
}

std::optional<RawForm> FindRaw(ByteReader in, int nesting) {
    while (const auto chunk = NextChunk(in)) {
        if (chunk->name != "FORM" && chunk->name != "LIST" && chunk->name != "CAT ") continue;
        auto inner = chunk->bytes;
        const auto type = AsText(inner.Take(4));
        if (!inner.Ok()) continue;
        if (type == "ILBM" || type == "PBM ") return CollectChunks(inner, type == "PBM ");
        if (nesting == kMaxNesting) continue;
        if (auto found = FindRaw(inner, nesting + 1)) return found;
    }
    return {};
}

bool ReadHeader(ByteReader in, IffForm& form) {
    form.width = in.U16BE();
    form.height = in.U16BE();
    in.Skip(4);
    form.planes = in.U8();
    const auto masking = in.U8();
    const auto compression = in.U8();
    in.Skip(1);
    form.transparent = in.U16BE();
    form.masking = masking <= 3 ? static_cast<IffMasking>(masking) : IffMasking::None;
    // Rows of bytes have no planes, so none for a mask.
    if (form.chunky && form.masking == IffMasking::Plane) form.masking = IffMasking::None;
    form.packed = compression == 1;
    const bool depth =
        (form.planes >= 1 && form.planes <= 8) || (!form.chunky && (form.planes == 24 || form.planes == 32));
    return in.Ok() && compression <= 1 && depth && IsPictureSize(form.width, form.height);
}

void AddHalfBrite(std::vector<Rgb>& colors) {
    colors.resize(32);
    for (std::size_t i = 0; i < 32; ++i) colors.push_back(colors[i] >> 1 & 0x7F7F7F);
}

// Without the mode chunk six planes with the colours of four or five can only be one of the two special modes.
std::uint32_t GuessMode(const IffForm& form) {
    if (form.planes != 6 || form.colors.empty() || form.chunky) return 0;
    return form.colors.size() <= 16 ? kHoldAndModify : form.colors.size() <= 32 ? kHalfBrite : 0;
}

void FindColors(IffForm& form, const RawForm& raw) {
    form.colors = TableFromRgb(raw.colors.All().first(std::min<std::size_t>(raw.colors.Size(), 768)));
    auto mode = raw.mode;
    const auto stated = mode.U32BE();
    const auto flags = mode.Ok() ? stated : GuessMode(form);
    form.holdAndModify = (flags & kHoldAndModify) != 0 && form.planes >= 5 && form.planes <= 8 && !form.chunky;
    if (form.TrueColor()) return;
    if (form.colors.empty()) form.colors = GrayRamp(1 << (form.holdAndModify ? form.planes - 2 : form.planes));
    const bool halfBrite = (flags & kHalfBrite) != 0 && form.planes == 6 && !form.holdAndModify;
    if (halfBrite && form.colors.size() <= 32) AddHalfBrite(form.colors);
}

} // namespace

std::optional<IffForm> FindIffForm(ByteSpan file) {
    const auto raw = FindRaw(ByteReader(file), 0);
    IffForm form;
    if (!raw || raw->body.empty()) return {};
    form.chunky = raw->chunky;
    if (!ReadHeader(raw->header, form)) return {};
    FindColors(form, *raw);
    form.body = raw->body;
    return form;
}

} // namespace pelorin
