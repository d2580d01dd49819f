// The fields of an image object's records in the order of the file, written down once for reader and writer.
//
// `ar` has a member for each form of field: Text, Number, Flag, Color, Rectangle, Raster and PackedText.
#pragma once

#include "formats/vio.h"

namespace pelorin {

template <class Archive, class Shadow>
void ExchangeShadow(Archive& ar, Shadow& shadow) {
    ar.Flag(shadow.on);
    ar.Color(shadow.color);
    ar.Number(shadow.opacity);
    ar.Number(shadow.angle);
    ar.Number(shadow.distance);
    ar.Number(shadow.size);
}

template <class Archive, class Glow>
void ExchangeGlow(Archive& ar, Glow& glow) {
    ar.Flag(glow.on);
    ar.Color(glow.color);
    ar.Number(glow.opacity);
    ar.Number(glow.width);
    ar.Number(glow.size);
}

template <class Archive, class Effect>
void ExchangeEffect(Archive& ar, Effect& effect) {
    ar.Flag(effect.on);
    ar.Color(effect.color);
    ar.Number(effect.opacity);
    ar.Number(effect.firstSize);
    ar.Number(effect.secondSize);
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
    ExchangeShadow(ar, layer.m_Shadow);
    ExchangeGlow(ar, layer.m_Glow);
    ExchangeEffect(ar, layer.m_Effect);
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
