#include "resources/png_file.h"

#include <png.h>

#include <cstdio>

bool WritePngFile(const char* path, int width, int height, int channels, const uint8_t* pixels) {
    if ((channels != 3 && channels != 4) || width <= 0 || height <= 0 || !pixels) return false;
    FILE* f = std::fopen(path, "wb");
    if (!f) return false;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png ? png_create_info_struct(png) : nullptr;
    if (!png || !info || setjmp(png_jmpbuf(png))) {
        png_destroy_write_struct(&png, &info);
        std::fclose(f);
        return false;
    }
    png_init_io(png, f);
    png_set_IHDR(png, info, png_uint_32(width), png_uint_32(height), 8,
                 channels == 4 ? PNG_COLOR_TYPE_RGBA : PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_set_compression_level(png, 6);
    png_write_info(png, info);
    const size_t stride = size_t(width) * size_t(channels);
    for (int y = 0; y < height; ++y) png_write_row(png, const_cast<uint8_t*>(pixels + stride * size_t(y)));
    png_write_end(png, nullptr);
    png_destroy_write_struct(&png, &info);
    return std::fclose(f) == 0;
}
