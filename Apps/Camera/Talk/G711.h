// G711.h: the two codes of ITU-T G.711, and 16-bit samples.
#pragma once

#include <cstdint>

std::int16_t AlawToLinear(std::uint8_t code);
std::uint8_t LinearToUlaw(std::int16_t sample);

/// By way of the sample.
std::uint8_t AlawToUlaw(std::uint8_t code);
