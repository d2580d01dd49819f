#include "formats/metafile/wmf_records.h"

namespace pelorin::metafile {

namespace wmf {

bool NextRecord(ByteReader& in, Record& record) {
    const auto words = in.U32LE();
    record.function = in.U16LE();
    if (!in.Ok() || words < 3 || record.function == 0) return false;
    record.parameters = ByteReader(in.TakeUpTo((std::uint64_t{words} - 3) * 2));
    return true;
}

} // namespace wmf

namespace {

using namespace wmf;

constexpr std::size_t kPlaceableSize = 22, kHeaderSize = 18;
constexpr std::uint32_t kPlaceable = 0x9AC6CDD7;
constexpr double kScreenDpi = 96, kScreenWidth = 1024, kScreenHeight = 768;

bool IsHeader(ByteReader in) {
    const auto type = in.U16LE(), size = in.U16LE(), version = in.U16LE();
    return in.Ok() && (type == 1 || type == 2) && size == kHeaderSize / 2 && (version == 0x100 || version == 0x300);
}

// The first window that a plain file sets up; {} where it sets up none.
PointF FirstWindow(ByteReader in) {
    bool counts = true; // in the free mapping modes only
    Record record;
    while (NextRecord(in, record)) {
        if (record.function == kSetMapMode) counts = record.parameters.U16LE() >= unsigned(MapMode::Isotropic);
        if (record.function != kSetWindowExtent || !counts) continue;
        const auto extent = ReadYX(record.parameters);
        if (extent.x != 0 && extent.y != 0) return extent;
        break;
    }
    return {};
}

// What a file draws, in pixels of the screen, however far out.
Rect DrawnBox(ByteSpan file, const FileFacts& facts) {
    Canvas canvas(1, 1, 0);
    Painter painter(canvas, facts.device);
    PlayWmf(file, facts, painter);
    return canvas.Reached();
}

// The comments that hold a piece of an enhanced metafile each: a signature, kind and version, a checksum, flags, how
// many there are, the bytes of this piece, of those to come and of all.
struct Piece {
    std::uint32_t all = 0, left = 0;
    ByteSpan bytes;
};

bool ReadPiece(ByteReader in, Piece& piece) {
    constexpr std::uint16_t kComment = 15;
    constexpr std::uint32_t kSignature = 0x43464D57, kKind = 1;
    const auto escape = in.U16LE();
    in.Skip(2);
    if (escape != kComment || in.U32LE() != kSignature || in.U32LE() != kKind) return false;
    in.Skip(4 + 2 + 4 + 4);
    const auto size = in.U32LE();
    piece.left = in.U32LE();
    piece.all = in.U32LE();
    piece.bytes = in.Take(size);
    return in.Ok();
}

} // namespace

Bytes ReadEmbeddedEmf(ByteSpan file) {
    ByteReader in(file);
    in.Seek(file.size() >= 4 && LoadU32LE(file.data()) == kPlaceable ? kPlaceableSize + kHeaderSize : kHeaderSize);
    Bytes emf;
    Record record;
    Piece piece;
    while (NextRecord(in, record)) {
        if (record.function != kEscape || !ReadPiece(record.parameters, piece)) continue;
        emf.insert(emf.end(), piece.bytes.begin(), piece.bytes.end());
        if (piece.left == 0) return emf.size() == piece.all ? emf : Bytes();
    }
    return {};
}

bool ReadPlaceableFacts(ByteSpan file, FileFacts& facts) {
    ByteReader in(file);
    in.Skip(6);
    const double left = in.I16LE(), top = in.I16LE(), right = in.I16LE(), bottom = in.I16LE();
    const double perInch = in.U16LE();
    in.Seek(kPlaceableSize);
    if (!in.Ok() || perInch == 0 || left == right || top == bottom || !IsHeader(in)) return false;
    facts.width = std::abs(right - left) * kScreenDpi / perInch;
    facts.height = std::abs(bottom - top) * kScreenDpi / perInch;
    facts.windowOrigin = {left, top};
    facts.windowExtent = {right - left, bottom - top};
    facts.viewportExtent = {facts.width, facts.height};
    facts.firstRecord = kPlaceableSize + kHeaderSize;
    return true;
}

// Nothing says how large such a file is: the first window that it sets up does, or else all that it draws.
bool ReadPlainFacts(ByteSpan file, FileFacts& facts) {
    ByteReader in(file);
    if (!IsHeader(in)) return false;
    in.Seek(kHeaderSize);
    facts.firstRecord = kHeaderSize;
    facts.windowExtent = facts.viewportExtent = {kScreenWidth, kScreenHeight};
    facts.width = kScreenWidth;
    facts.height = kScreenHeight;
    if (const auto window = FirstWindow(in); window.x != 0) {
        const double shrink = std::max({1.0, std::abs(window.x) / kScreenWidth, std::abs(window.y) / kScreenHeight});
        facts.windowExtent = window;
        facts.width = std::abs(window.x) / shrink;
        facts.height = std::abs(window.y) / shrink;
        facts.viewportExtent = {facts.width, facts.height};
    } else if (const auto box = DrawnBox(file, facts); !box.Empty()) {
        facts.origin = {double(box.left), double(box.top)};
        facts.width = box.Width();
        facts.height = box.Height();
    }
    return true;
}

} // namespace pelorin::metafile
