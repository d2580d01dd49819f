// Animated cursors (ANI).
//
// A RIFF file: "RIFF", u32 size, "ACON", then chunks (riff.h):
//   "anih"  u32 header size (36), frames, steps, width, height, bit count, planes, default rate, flags (bit 0: frames
//           are icon files)
//   "rate"  u32 a step: how long it is shown, in 1/60 s; without it every step has the default rate
//   "seq "  u32 a step: number of its frame; without it step i shows frame i
//   "LIST"  "INFO": "INAM" title, "IART" artist
//   "LIST"  "fram": "icon" chunks, each a whole icon or cursor file of one frame
// What is shown is the first image of a frame.
#pragma once

#include "formats/load_image.h"
#include "icon/icon_sources.h"
#include "pixel/cdib.h"

namespace pelorin {

/// One step of an animated cursor as a picture of 32 bits; `m_Dib.m_nFrameRate` is its time in 1/60 s.
class CAniObject {
public:
    explicit CAniObject(CDIB dib, const std::array<int, 6>& values = {}) : m_Dib(std::move(dib)), m_nValues(values) {}

    CDIB m_Dib;
    std::array<int, 6> m_nValues; ///< kept for a preview
};

/// What the file says of the whole.
struct AniInfo {
    std::string title, artist; ///< at most 80 bytes of the file
    int defaultRate = 0;
};

/// One frame in memory: 32 bytes of notes, then the icon file, then 4 zeros. The notes hold the sum of the file's bytes
/// at 12, "icon" at 24 and the file's length at 28. Empty when fewer bytes are left.
[[nodiscard]] Bytes ReadIconFrame(ByteReader& in, std::uint32_t bytes);

[[nodiscard]] bool IsAni(ByteSpan file);

/// Appends one object a step; a frame that is shown by two steps gives two. The number of steps; 0, with the list as it
/// was, for a file without icon frames and for a damaged one.
[[nodiscard]] int ReadAniFile(ByteSpan file, std::vector<CAniObject>& list, AniInfo* info = nullptr);
/// All images of the first frame; false, with the group unchanged, when there is none.
[[nodiscard]] bool ReadAniPreview(ByteSpan file, CIconGroup& group);

/// The step `request.frame` as a picture; its time is told in `facts.delay`.
[[nodiscard]] DibBlock ReadAni(ByteSpan file, const PictureRequest& request, PictureFacts& facts);
/// Hands out every frame of the file as an icon.
bool VisitAniFrames(ByteSpan file, const IconVisitor& visitor);
void InspectAni(ByteSpan file, IconFileReport& report);

} // namespace pelorin
