// The doors to libpng that reading and writing share. libpng leaves a failed call by longjmp; these keep that jump away
// from C++ objects. Private to png_read.cpp and png_write.cpp.
#pragma once

#include <png.h>

#include <csetjmp>

namespace pelorin {

[[noreturn]] inline void PngFailed(png_structp png, png_const_charp) {
    png_longjmp(png, 1);
}

inline void PngWarned(png_structp, png_const_charp) {}

/// Runs `work`; false when libpng gave up inside. A local of `work` that is alive during a call into libpng must not
/// need a destructor, as the jump skips it.
template <class Work>
[[nodiscard]] bool PngGuarded(png_structp png, Work&& work) {
    if (setjmp(png_jmpbuf(png)) != 0) return false;
    work();
    return true;
}

} // namespace pelorin
