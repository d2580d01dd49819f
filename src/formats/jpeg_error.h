// The JPEG library's way to fail, shared by reader and writer.
//
// The library leaves through `Leave`, a long jump. It must not pass over objects with destructors, so every function
// that holds a `setjmp` has only plain locals, and what needs cleaning up lives in the object around them.
#pragma once

#include <jpeglib.h>

#include <csetjmp>
#include <cstddef>
#include <cstdio>
#include <jerror.h>

namespace pelorin {

struct JpegErrors {
    jpeg_error_mgr manager; // first: the library knows only this
    std::jmp_buf jump;

    /// Failures jump, messages are nobody's business.
    jpeg_error_mgr* Install() {
        jpeg_std_error(&manager);
        manager.error_exit = Leave;
        manager.emit_message = [](j_common_ptr, int) {};
        manager.output_message = [](j_common_ptr) {};
        return &manager;
    }

    [[noreturn]] static void Leave(j_common_ptr codec) {
        std::longjmp(reinterpret_cast<JpegErrors*>(codec->err)->jump, 1);
    }
};

} // namespace pelorin
