#include "formats/svg.h"

#include "formats/reader_support.h"
#include "platform/svg_renderer.h"

#include <zlib.h>

namespace pelorin {

namespace {

// The first element stands behind licences in comments at times, and these are long.
constexpr std::size_t kLookedAt = 65536;
constexpr Size kDefaultSize = {512, 512};

bool IsGzip(ByteSpan file) {
    return file.size() > 18 && file[0] == 0x1F && file[1] == 0x8B && file[2] == 8;
}

// The first bytes of what is packed.
std::string UnpackStart(ByteSpan file) {
    constexpr int kGzipWindow = 15 + 16;
    z_stream stream{};
    if (inflateInit2(&stream, kGzipWindow) != Z_OK) return {};
    std::string text(kLookedAt, '\0');
    stream.next_in = const_cast<Bytef*>(file.data());
    stream.avail_in = static_cast<uInt>(std::min<std::size_t>(file.size(), kLookedAt));
    stream.next_out = reinterpret_cast<Bytef*>(text.data());
    stream.avail_out = static_cast<uInt>(text.size());
    inflate(&stream, Z_SYNC_FLUSH);
    text.resize(text.size() - stream.avail_out);
    inflateEnd(&stream);
    return text;
}

// Behind a declaration that begins at the start of `text`: a document type may have declarations of its own in
// brackets.
std::size_t EndOfDeclaration(std::string_view text) {
    const auto close = text.find('>'), bracket = text.find('[');
    if (bracket == text.npos || bracket > close) return close == text.npos ? close : close + 1;
    const auto end = text.find("]", bracket);
    const auto behind = end == text.npos ? end : text.find('>', end);
    return behind == text.npos ? behind : behind + 1;
}

// Behind the instruction, comment or declaration at the start of `text`; npos when it is none or has no end.
std::size_t EndOfPreface(std::string_view text) {
    const auto behind = [&](std::string_view mark) {
        const auto at = text.find(mark);
        return at == text.npos ? at : at + mark.size();
    };
    if (text.starts_with("<?")) return behind("?>");
    if (text.starts_with("<!--")) return behind("-->");
    return text.starts_with("<!") ? EndOfDeclaration(text) : text.npos;
}

// True when the first element of the XML text is called "svg".
bool BeginsWithSvg(std::string_view text) {
    if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
    for (;;) {
        text.remove_prefix(std::min(text.find_first_not_of(" \t\r\n"), text.size()));
        const auto behind = EndOfPreface(text);
        if (behind == text.npos) break;
        text.remove_prefix(behind);
    }
    if (!text.starts_with('<')) return false;
    auto name = text.substr(1, std::min(text.find_first_of(" \t\r\n/>"), text.size()) - 1);
    if (const auto colon = name.find(':'); colon != name.npos) name.remove_prefix(colon + 1);
    return name == "svg";
}

// The largest size of the same shape in the box.
Size Fitted(Size size, Size box) {
    const double scale = std::min(double(box.width) / size.width, double(box.height) / size.height);
    const auto side = [&](int length, int most) { return std::clamp(static_cast<int>(length * scale + 0.5), 1, most); };
    return {side(size.width, box.width), side(size.height, box.height)};
}

} // namespace

bool IsSvg(ByteSpan file) {
    if (IsGzip(file)) return BeginsWithSvg(UnpackStart(file));
    const auto start = file.first(std::min(file.size(), kLookedAt));
    return BeginsWithSvg({reinterpret_cast<const char*>(start.data()), start.size()});
}

bool CanDrawSvg() {
    return HasSvgRenderer();
}

DibBlock ReadSvg(ByteSpan file, const PictureRequest& request, PictureFacts& facts) {
    if (!IsSvg(file) || !HasSvgRenderer()) return {};
    const Size largest{kMaxSvgSide, kMaxSvgSide};
    auto own = SvgSize(file);
    if (own == Size{}) own = kDefaultSize;
    if (own.width > kMaxSvgSide || own.height > kMaxSvgSide) own = Fitted(own, largest);
    const bool boxGiven = request.drawnFor.width > 0 && request.drawnFor.height > 0;
    const Size box{std::min(request.drawnFor.width, kMaxSvgSide), std::min(request.drawnFor.height, kMaxSvgSide)};
    const auto size = boxGiven ? Fitted(own, box) : own;
    if (!IsPictureSize(size.width, size.height)) return {};

    ProgressScope progress(request.progress, ReadingText("SVG"), 1);
    const auto pixels = DrawSvg(file, size);
    progress.Step(1);
    if (pixels.empty() || progress.StopAsked()) return {};
    auto block = CreateDIB(size.width, size.height, 32);
    const DibRows rows(block);
    const auto* source = pixels.data();
    for (int y = 0; y < rows.Height(); ++y) {
        for (int x = 0; x < rows.Width(); ++x)
            StoreU32LE(rows.PictureRow(y) + std::ptrdiff_t{4} * x, StraightColor(*source++));
    }
    facts.width = own.width;
    facts.height = own.height;
    facts.bits = 32;
    return block;
}

} // namespace pelorin
