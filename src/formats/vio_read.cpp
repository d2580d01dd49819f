#include "base/text.h"
#include "formats/reader_support.h"
#include "formats/vio.h"
#include "formats/vio_records.h"
#include "formats/vnzb.h"

#include <fmt/format.h>

namespace pelorin {

namespace {

constexpr std::string_view kMagic = "VNHO";
constexpr unsigned kMostPerByte = 16;

// A failure of any field latches in the reader below.
class RecordReader {
public:
    explicit RecordReader(ByteReader& in)
        : m_in(in), m_left(std::max(std::uint64_t{4} * kMaxPixels, std::uint64_t{kMostPerByte} * in.Size())) {}

    void Number(int& value) { value = m_in.I32LE(); }
    void Flag(bool& value) { value = m_in.U8() != 0; }
    void Color(ColorRef& value) {
        const auto red = m_in.U8(), green = m_in.U8(), blue = m_in.U8();
        value = MakeColorRef(red, green, blue);
    }
    void Rectangle(InclusiveRect& rect) {
        for (int* side : {&rect.left, &rect.top, &rect.right, &rect.bottom}) Number(*side);
    }
    void Text(std::string& text) {
        text = AsText(m_in.Take(m_in.U32LE()));
        text.resize(std::min(text.find('\0'), text.size()));
    }
    void PackedText(std::string& text) { text = AsText(Unpack()); }
    void Raster(Bytes& raster, Size size) {
        raster = Unpack();
        if (raster.empty()) return;
        const auto bytes =
            IsPictureSize(size.width, size.height)
                ? std::uint64_t{4} * static_cast<unsigned>(size.width) * static_cast<unsigned>(size.height)
                : 0;
        if (bytes == 0 || raster.size() < bytes) return m_in.Fail();
        raster.resize(static_cast<std::size_t>(bytes));
    }

private:
    // All blocks together unpack to no more than the largest picture, or than a large file may well hold.
    Bytes Unpack() {
        const auto packed = m_in.Take(m_in.U32LE());
        if (packed.empty()) return {};
        auto content = UncompressVnzbHeadless(packed, m_left);
        if (!content) {
            m_in.Fail();
            return {};
        }
        m_left -= content->size();
        return std::move(*content);
    }

    ByteReader& m_in;
    std::uint64_t m_left;
};

void ReadLayers(ByteReader& in, RecordReader& records, CVniLayers& layers) {
    for (auto count = in.U32LE(); count > 0 && in.Ok(); --count) ExchangeLayer(records, layers.emplace_back());
}

std::string ShownName(const std::string& name, std::size_t index) {
    return name.empty() ? fmt::format("Layer {}", index + 1) : DecodeText(name);
}

} // namespace

bool IsVio(ByteSpan file) {
    return ByteReader(file).StartsWith(kMagic);
}

bool ReadImageObject(ByteSpan file, ImageObject& object) {
    object = {};
    ByteReader in(file);
    if (!IsVio(file)) return false;
    in.Skip(kMagic.size());
    object.version = in.U16LE();
    RecordReader records(in);
    records.Number(object.size.width);
    records.Number(object.size.height);
    const auto section = in.Take(in.U32LE());
    object.section.assign(section.begin(), section.end());
    std::string info;
    records.PackedText(info);
    object.info = ParseVioInfo(info);
    for (auto count = in.U32LE(); count > 0 && in.Ok(); --count) {
        auto& image = object.images.emplace_back();
        ExchangeImageHead(records, image);
        ReadLayers(in, records, image.m_arrLayers);
    }
    return in.Ok();
}

DibBlock ReadVio(ByteSpan file, const PictureRequest& request, PictureFacts& facts) {
    ImageObject object;
    if (!ReadImageObject(file, object)) return {};
    facts.frames = static_cast<int>(object.images.size());
    if (request.frame < 0 || request.frame >= facts.frames) return {};
    auto& image = object.images[static_cast<std::size_t>(request.frame)];
    for (std::size_t i = 0; i < image.m_arrLayers.size(); ++i) {
        facts.layers.push_back(ShownName(image.m_arrLayers[i].m_strName, i));
    }
    if (request.layer < 0) return image.Composite();
    const auto layer = static_cast<std::size_t>(request.layer);
    return layer < image.m_arrLayers.size() ? CopyHandle(image.m_arrLayers[layer].GetRendered()) : DibBlock();
}

} // namespace pelorin
