#pragma once

#include <benchmark/benchmark.h>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <jpeglib.h>

/// Pictures like a camera's, and libjpeg alone as the floor of what is done with them.
namespace orvane::bench {

struct Rgb {
    unsigned width = 0;
    unsigned height = 0;
    std::vector<unsigned char> bytes;
};

/// A sky that grows lighter towards the horizon, with clouds and sensor noise.
inline Rgb noisySky(unsigned width, unsigned height) {
    Rgb sky{width, height, std::vector<unsigned char>(std::size_t{3} * width * height)};
    std::mt19937 random(1);
    std::normal_distribution<double> noise(0, 3);
    const auto byteOf = [](double v) {
        return static_cast<unsigned char>(v < 0 ? 0 : v > 255 ? 255 : v);
    };
    std::size_t i = 0;
    for (unsigned y = 0; y < height; ++y)
        for (unsigned x = 0; x < width; ++x) {
            const double u = 1.0 * x / width;
            const double v = 1.0 * y / height;
            const double cloud =
                60 * (std::sin(9 * u + 4 * std::sin(5 * v)) + std::sin(23 * v + 7 * u * u)) *
                std::sin(3 * u + 2 * v);
            const double grain = noise(random);
            sky.bytes[i++] = byteOf(90 + 60 * v + cloud + grain);
            sky.bytes[i++] = byteOf(130 + 50 * v + cloud * 0.8 + grain);
            sky.bytes[i++] = byteOf(200 + 20 * v + cloud * 0.3 + grain);
        }
    return sky;
}

inline std::string encode(const Rgb& picture, int quality, int sampling) {
    jpeg_compress_struct info{};
    jpeg_error_mgr errors{};
    info.err = jpeg_std_error(&errors);
    jpeg_create_compress(&info);
    unsigned char* bytes = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&info, &bytes, &size);
    info.image_width = picture.width;
    info.image_height = picture.height;
    info.input_components = 3;
    info.in_color_space = JCS_RGB;
    jpeg_set_defaults(&info);
    jpeg_set_quality(&info, quality, TRUE);
    info.comp_info[0].h_samp_factor = sampling;
    info.comp_info[0].v_samp_factor = sampling;
    jpeg_start_compress(&info, TRUE);
    while (info.next_scanline < info.image_height) {
        auto* row = const_cast<JSAMPROW>(picture.bytes.data() +
                                         std::size_t{3} * info.next_scanline * picture.width);
        jpeg_write_scanlines(&info, &row, 1);
    }
    jpeg_finish_compress(&info);
    jpeg_destroy_compress(&info);
    std::string result(reinterpret_cast<const char*>(bytes), size);
    std::free(bytes);
    return result;
}

/// `eighths` of its size.
inline void decode(const std::string& jpeg, Rgb& picture, unsigned eighths = 8) {
    jpeg_decompress_struct info{};
    jpeg_error_mgr errors{};
    info.err = jpeg_std_error(&errors);
    jpeg_create_decompress(&info);
    jpeg_mem_src(&info, reinterpret_cast<const unsigned char*>(jpeg.data()),
                 static_cast<unsigned long>(jpeg.size()));
    jpeg_read_header(&info, TRUE);
    info.out_color_space = JCS_RGB;
    info.scale_num = eighths;
    info.scale_denom = 8;
    jpeg_start_decompress(&info);
    picture.width = info.output_width;
    picture.height = info.output_height;
    picture.bytes.resize(std::size_t{3} * picture.width * picture.height);
    while (info.output_scanline < info.output_height) {
        JSAMPROW row = picture.bytes.data() + std::size_t{3} * info.output_scanline * picture.width;
        jpeg_read_scanlines(&info, &row, 1);
    }
    jpeg_finish_decompress(&info);
    jpeg_destroy_decompress(&info);
}

/// As a camera sends it, of the size that the benchmark asks for.
inline const std::string& cameraPicture(benchmark::State& state) {
    static std::vector<std::pair<std::int64_t, std::string>> made;
    for (const auto& [width, jpeg] : made)
        if (width == state.range(0)) return jpeg;
    const Rgb sky =
        noisySky(static_cast<unsigned>(state.range(0)), static_cast<unsigned>(state.range(1)));
    return made.emplace_back(state.range(0), encode(sky, 90, 2)).second;
}

inline double secondsSince(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

} // namespace orvane::bench
