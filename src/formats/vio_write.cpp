#include "formats/vio.h"
#include "formats/vio_records.h"
#include "formats/vnzb.h"

namespace pelorin {

namespace {

class RecordWriter {
public:
    explicit RecordWriter(ByteWriter& out) : m_out(out) {}

    [[nodiscard]] bool Ok() const { return m_ok; }

    void Number(int value) { m_out.I32LE(value); }
    void Flag(bool value) { m_out.U8(value ? 1 : 0); }
    void Color(ColorRef value) {
        for (int shift = 0; shift < 24; shift += 8) m_out.U8(value >> shift);
    }
    void Rectangle(const InclusiveRect& rect) {
        for (const int side : {rect.left, rect.top, rect.right, rect.bottom}) Number(side);
    }
    void Text(const std::string& text) {
        if (text.empty()) return m_out.U32LE(0);
        m_out.U32LE(static_cast<std::uint32_t>(text.size() + 1));
        m_out.Text(text);
        m_out.U8(0);
    }
    void PackedText(std::string_view text) { Pack(AsBytes(text)); }
    void Raster(const Bytes& raster, Size) { Pack(raster); }

private:
    void Pack(ByteSpan content) {
        if (content.empty()) return m_out.U32LE(0);
        const auto block = CompressVnzbHeadless(content);
        m_ok = m_ok && !block.empty();
        m_out.U32LE(static_cast<std::uint32_t>(block.size()));
        m_out.Raw(block);
    }

    ByteWriter& m_out;
    bool m_ok = true;
};

} // namespace

Bytes WriteImageObject(const ImageObject& object) {
    ByteWriter out;
    RecordWriter records(out);
    out.Text("VNHO");
    out.U16LE(static_cast<std::uint32_t>(object.version));
    records.Number(object.size.width);
    records.Number(object.size.height);
    out.U32LE(static_cast<std::uint32_t>(object.section.size()));
    out.Raw(object.section);
    records.PackedText(FormatVioInfo(object.info));
    out.U32LE(static_cast<std::uint32_t>(object.images.size()));
    for (const auto& image : object.images) {
        ExchangeImageHead(records, image);
        out.U32LE(static_cast<std::uint32_t>(image.m_arrLayers.size()));
        for (const auto& layer : image.m_arrLayers) ExchangeLayer(records, layer);
    }
    return records.Ok() ? out.Take() : Bytes();
}

} // namespace pelorin
