// Picture.h: a picture in memory: planes of brightness and of two colour differences, at half the size (I420).
#pragma once

#include <cstdint>

struct PicturePlane
{
    std::uint8_t* data;
    int stride; ///< bytes from a row to the next
    unsigned int width;
    unsigned int height;
};

/// Borrowed for a call.
struct Picture
{
    PicturePlane luma;    ///< 16 black to 235 white
    PicturePlane blue;    ///< Cb; 128 is none
    PicturePlane red;     ///< Cr; 128 is none
    std::uint64_t timeUs; ///< when it was taken, on the steady clock
};
