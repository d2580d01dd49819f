// JPEG files as other programs write them.
#pragma once

#include "base/bytes.h"

#include <jpeglib.h>

#include <cstdio>
#include <cstdlib>

namespace pelorin::test {

struct ForeignJpeg {
    int width, height;
    int across = 1, down = 1; ///< sampling of the first component
    int quality = 75;
    J_COLOR_SPACE space = JCS_YCbCr;
    bool optimal = false, progressive = false;
    unsigned restart = 0;
    std::vector<jpeg_scan_info> script{};
    bool adobe = true; ///< says what inks mean

    [[nodiscard]] int Components() const {
        return space == JCS_GRAYSCALE ? 1 : space == JCS_CMYK || space == JCS_YCCK ? 4 : 3;
    }
};

/// `fill(y, row)` puts in grey, red, green and blue, or four inks.
template <class Fill>
Bytes WriteForeignJpeg(const ForeignJpeg& f, Fill fill) {
    jpeg_compress_struct codec;
    jpeg_error_mgr errors;
    codec.err = jpeg_std_error(&errors);
    jpeg_create_compress(&codec);
    unsigned char* data = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&codec, &data, &size);
    codec.image_width = static_cast<JDIMENSION>(f.width);
    codec.image_height = static_cast<JDIMENSION>(f.height);
    codec.input_components = f.Components();
    codec.in_color_space = f.Components() == 1 ? JCS_GRAYSCALE : f.Components() == 4 ? JCS_CMYK : JCS_RGB;
    jpeg_set_defaults(&codec);
    jpeg_set_colorspace(&codec, f.space);
    jpeg_set_quality(&codec, f.quality, TRUE);
    codec.comp_info[0].h_samp_factor = f.across;
    codec.comp_info[0].v_samp_factor = f.down;
    codec.optimize_coding = f.optimal;
    codec.restart_interval = f.restart;
    if (f.Components() == 4) codec.write_Adobe_marker = f.adobe;
    if (f.progressive) jpeg_simple_progression(&codec);
    if (!f.script.empty()) {
        codec.scan_info = f.script.data();
        codec.num_scans = static_cast<int>(f.script.size());
    }
    jpeg_start_compress(&codec, TRUE);
    Bytes row(static_cast<std::size_t>(f.width * f.Components()));
    JSAMPROW rows[1] = {row.data()};
    for (int y = 0; y < f.height; ++y) {
        fill(y, row);
        jpeg_write_scanlines(&codec, rows, 1);
    }
    jpeg_finish_compress(&codec);
    jpeg_destroy_compress(&codec);
    Bytes file(data, data + size);
    std::free(data);
    return file;
}

} // namespace pelorin::test
