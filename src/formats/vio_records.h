// The fields of an image object's records in the order of the file, written down once for reader and writer.
//
// `ar` has a member for each form of field: Text, Number, Flag, Color, Rectangle, Raster and PackedText.
#pragma once

#include "formats/vio.h"

namespace pelorin {

/// What every effect begins with, and the numbers that follow.
template <class Archive, class Effect, class... Numbers>
void ExchangeEffect(Archive& ar, Effect& effect, Numbers&... numbers) {
    ar.Flag(effect.on);
    ar.Color(effect.color);
    ar.Number(effect.opacity);
    (ar.Number(numbers), ...);
}

template <class Archive, class Layer>
void ExchangeLayer(Archive& ar, Layer& layer) {
    ar.Text(layer.m_strName);
    ar.Number(layer.m_nId);
    ar.Number(layer.m_nOpacity);
    ar.Flag(layer.m_bVisible);
    ar.Number(layer.m_nReserved);
    ar.Number(layer.m_nKind);
    ar.Number(layer.m_RasterSize.width);
    ar.Number(layer.m_RasterSize.height);
    ar.Raster(layer.m_Raster, layer.m_RasterSize);
    ar.PackedText(layer.m_strText);
    ar.Rectangle(layer.m_Rect);
    auto& shadow = layer.m_Shadow;
    ExchangeEffect(ar, shadow, shadow.angle, shadow.distance, shadow.size);
    ExchangeEffect(ar, layer.m_Glow, layer.m_Glow.width, layer.m_Glow.size);
    ExchangeEffect(ar, layer.m_Effect, layer.m_Effect.firstSize, layer.m_Effect.secondSize);
}

/// An image without its layers.
template <class Archive, class Image>
void ExchangeImageHead(Archive& ar, Image& image) {
    ar.Text(image.m_strName);
    ar.Text(image.m_strSecondName);
    ar.Number(image.m_Size.width);
    ar.Number(image.m_Size.height);
}

} // namespace pelorin
