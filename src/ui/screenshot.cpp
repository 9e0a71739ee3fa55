#include "ui/screenshot.h"

#include <cstdio>
#include <csetjmp>

#include <jpeglib.h>

std::string ScreenShotFileName(const char* workingDir, const SSystemTime& t) {
    char name[64];
    std::snprintf(name, sizeof name, "%d%d%d%d%d%d%d.jpg", t.year, t.month, t.day, t.hour + 8, t.minute, t.second,
                  t.milliseconds);
    std::string path = workingDir ? workingDir : "";
    if (!path.empty() && path.back() != '/') path += '/';
    return path + "screenshot/" + name;
}

void SurfaceToBgr(const CSurface& surface, std::vector<uint8_t>& out) {
    out.resize(size_t(surface.width) * size_t(surface.height) * 3);
    uint8_t* dst = out.data();
    for (int32_t y = 0; y < surface.height; ++y) {
        const uint16_t* row = surface.Row(y);
        for (int32_t x = 0; x < surface.width; ++x) {
            const uint32_t p = row[x];
            *dst++ = uint8_t((p << 3) & 255);
            *dst++ = uint8_t((p >> 3) & 255);
            *dst++ = uint8_t((p >> 8) & 255);
        }
    }
}

namespace {
struct SJpegError {
    jpeg_error_mgr mgr;
    jmp_buf jump;
};
void OnJpegError(j_common_ptr cinfo) {
    auto* err = reinterpret_cast<SJpegError*>(cinfo->err);
    std::longjmp(err->jump, 1);
}
}  // namespace

bool WriteJpegBgr(const char* path, const uint8_t* bgr, int32_t width, int32_t height, int quality) {
    if (!path || !bgr || width <= 0 || height <= 0) return false;
    FILE* f = std::fopen(path, "wb");
    if (!f) return false;
    jpeg_compress_struct cinfo;
    SJpegError err;
    cinfo.err = jpeg_std_error(&err.mgr);
    err.mgr.error_exit = OnJpegError;
    if (setjmp(err.jump)) {
        jpeg_destroy_compress(&cinfo);
        std::fclose(f);
        std::remove(path);
        return false;
    }
    jpeg_create_compress(&cinfo);
    jpeg_stdio_dest(&cinfo, f);
    cinfo.image_width = JDIMENSION(width);
    cinfo.image_height = JDIMENSION(height);
    cinfo.input_components = 3;
    cinfo.in_color_space = JCS_EXT_BGR;
    jpeg_set_defaults(&cinfo);  // JFIF, YCbCr, 2x2 luma sampling, baseline Huffman
    jpeg_set_quality(&cinfo, quality, TRUE);
    jpeg_start_compress(&cinfo, TRUE);
    const size_t stride = size_t(width) * 3;
    while (cinfo.next_scanline < cinfo.image_height) {
        JSAMPROW row = const_cast<JSAMPROW>(bgr + size_t(cinfo.next_scanline) * stride);
        jpeg_write_scanlines(&cinfo, &row, 1);
    }
    jpeg_finish_compress(&cinfo);
    jpeg_destroy_compress(&cinfo);
    const bool ok = std::fflush(f) == 0;
    return std::fclose(f) == 0 && ok;
}
