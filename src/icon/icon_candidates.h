// The images of an icon or cursor file as candidates for one picture.
#pragma once

#include "pixel/cdib.h"

#include <vector>

namespace pelorin {

class CIcoCurObject {
public:
    int m_nFrames = 1;
    CDIB m_Dib; ///< 32 bits
    int m_nWidth = 0, m_nHeight = 0;
    int m_nBits = 0; ///< planes x bit count of the image's header
    int m_nHotSpotX = 0, m_nHotSpotY = 0;
};

/// Puts the images into the list, which stays in ascending order of width and, at equal width, of depth; equal ones
/// stay in the order of the file. Images behind one that cannot be read are left out. False when the list is empty
/// afterwards.
bool ReadCandidates(ByteSpan file, std::vector<CIcoCurObject>& list);

/// The widest image of an icon or cursor file, of those the deepest, painted on white: 24 bits. Empty when the file
/// cannot be read or holds no image.
[[nodiscard]] DibBlock LoadBestPreview(std::string_view path);

} // namespace pelorin
