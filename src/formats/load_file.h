// Pictures from disk, and the three values that are published afterwards.
#pragma once

#include "formats/load_image.h"
#include "pixel/cdib.h"

#include <atomic>

namespace pelorin {

/// The picture of a file. A file whose kind is known and is no picture's (a program, a page) fails at once. Empty on
/// failure, with `facts` cleared. Safe on any thread.
[[nodiscard]] DibBlock LoadPicture(std::string_view path, const PictureRequest& request, PictureFacts& facts);

/// Releases what `dib` held and puts the file's picture there, with palette, source palette, transparent index and
/// frame time; a picture with a transparent index comes as 32 bits. Publishes the three values below. False, with `dib`
/// empty, when there is no such file or it is no picture.
bool LoadFromFile(CDIB& dib, std::string_view path, const PictureRequest& request = {}, PictureFacts* facts = nullptr);

/// Width, height and depth of the last picture that `LoadFromFile` read: for a JPEG those of the file, with 24 bits,
/// else those of the block; 0 after a failure.
extern std::atomic<int> g_LastImageWidth, g_LastImageHeight, g_LastImageBits;

} // namespace pelorin
