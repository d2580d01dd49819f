// The letters that metafiles are written with: a plain face of our own, drawn with a pen.
//
// Units: 14 are the size of the font; 10 is the height of capitals, 7 that of small letters, -3 the depth of tails. The
// base line is 0 and heights grow upwards. Latin letters with their marks, Greek, Cyrillic and common signs; what
// the face does not have is a box.
#pragma once

#include "formats/metafile/geometry.h"

namespace pelorin::metafile {

inline constexpr double kFaceSize = 14, kFaceAscent = 12.7, kFaceDescent = 3;
/// Mean advance of the face's letters, in units.
inline constexpr double kFaceMeanAdvance = 6.2;

[[nodiscard]] double FaceAdvance(char32_t letter);
[[nodiscard]] std::vector<std::vector<PointF>> FaceStrokes(char32_t letter);
/// A stroke whose blunt corners are rounded, for letters that are drawn large; sharp ones stay.
[[nodiscard]] std::vector<PointF> RoundedStroke(const std::vector<PointF>& stroke);

} // namespace pelorin::metafile
