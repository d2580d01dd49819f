#include "formats/vio.h"

#include <fmt/format.h>

namespace pelorin {

CVniImage& AddVniImage(ImageObject& object) {
    auto& image = object.images.emplace_back();
    image.m_strName = fmt::format("Image{}", object.images.size());
    image.m_Size = object.size;
    return image;
}

CVniLayer& AddVniLayer(CVniImage& image) {
    auto& layer = image.m_arrLayers.emplace_back();
    const auto number = image.m_arrLayers.size() - 1;
    layer.m_strName = number == 0 ? "Background" : fmt::format("Layer {}", number);
    return layer;
}

bool AddVniPicture(ImageObject& object, const DibBlock& picture) {
    auto raster = RasterFromDIB(picture);
    if (raster.empty()) return false;
    const Size size{DIBWidth(picture), DIBHeight(picture)};
    if (object.size == Size{}) object.size = size;
    auto& image = AddVniImage(object);
    image.m_Size = size;
    auto& layer = AddVniLayer(image);
    layer.m_RasterSize = size;
    layer.m_Raster = std::move(raster);
    layer.m_Rect = {0, 0, size.width - 1, size.height - 1};
    return true;
}

} // namespace pelorin
