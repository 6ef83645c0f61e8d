// ByteOrder.h: big-endian numbers in byte buffers, at any alignment. The only byte-order code of the library.
#pragma once

#include <cstdint>

inline void PutBE16(unsigned char* out, std::uint16_t value)
{
    out[0] = static_cast<unsigned char>(value >> 8);
    out[1] = static_cast<unsigned char>(value);
}

inline void PutBE32(unsigned char* out, std::uint32_t value)
{
    out[0] = static_cast<unsigned char>(value >> 24);
    out[1] = static_cast<unsigned char>(value >> 16);
    out[2] = static_cast<unsigned char>(value >> 8);
    out[3] = static_cast<unsigned char>(value);
}

inline std::uint16_t GetBE16(const unsigned char* in)
{
    return static_cast<std::uint16_t>((in[0] << 8) | in[1]);
}

inline std::uint32_t GetBE32(const unsigned char* in)
{
    return (static_cast<std::uint32_t>(in[0]) << 24) | (static_cast<std::uint32_t>(in[1]) << 16) |
           (static_cast<std::uint32_t>(in[2]) << 8) | static_cast<std::uint32_t>(in[3]);
}
