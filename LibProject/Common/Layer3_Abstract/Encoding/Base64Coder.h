// Base64Coder.h: Base64 (RFC 4648, 4), with two decoders that treat bad input differently, and UTF-8 code points.
//
// Without state. Any thread.
#pragma once

#include <cstdint>
#include <string>

/// The alphabet by sextet; the sixty-fifth character is the pad.
extern const char* const g_pCodes;
/// Sextet by input byte: "=" is 254, every byte outside the alphabet 255.
extern const unsigned char g_pMap[256];
/// Sextet by input byte below 128: every byte outside the alphabet is 255, "=" too.
extern const std::uint32_t Base64IdxTab[128];

class CBase64Coder
{
public:
    CBase64Coder() = default;
    virtual ~CBase64Coder() = default;

    /// Encodes with padding, without line breaks.
    /// @param dstLen  room in `dst`; receives the text's length without the zero byte behind it
    /// @return 1; 0, with nothing written, when `dst` is null or has not room for the text and a zero byte
    static int Encode(const unsigned char* src, unsigned long srcLen, unsigned char* dst, unsigned long* dstLen);

    /// The same text in place of what `dst` held. @return 1
    static int Encode(const unsigned char* src, unsigned long srcLen, std::string& dst);

    /// Decodes, skipping every foreign byte. An incomplete last group is dropped, and a group behind an inner "=" also
    /// yields fewer bytes.
    /// @param dst     not ended by a zero byte
    /// @param dstLen  room in `dst`; receives the bytes written
    /// @return 1; 0, with `dstLen` left alone, when the room ends
    static int Decode(const std::string& src, unsigned char* dst, unsigned long* dstLen);

    /// Decodes into a C string, skipping every foreign byte, and ends at the first "=".
    /// @param dst  room for strlen(src) * 3 / 4 + 2 bytes
    /// @return at an "=": one more than the finished bytes, which counts the byte under construction; this is 0 and
    ///         ends the text when the input is well-formed. Otherwise the bytes without the zero byte behind them.
    unsigned int base64decone(const char* src, char* dst);

    /// The same for input that nobody vouches for: at most `capacity` - 1 bytes are kept, and there is always a zero
    /// byte behind the text.
    /// @param capacity  room in `dst`; with 0 nothing is written
    unsigned int base64decone(const char* src, char* dst, unsigned int capacity);

    /// Encodes the text in `buf` in place. @param buf  room for the encoded text and a zero byte
    void b64encode(unsigned char* buf);

    /// Length in bytes of the UTF-8 sequence that begins with `lead`, by the six-byte scheme of RFC 2279; 0 for a
    /// continuation byte.
    unsigned int utf_8_encoded_size(unsigned char lead);
    /// @param s     the sequence; it is read up to its length or a zero byte
    /// @param code  receives the code point, 0 for a continuation byte
    /// @return the sequence's length
    unsigned int utf_8_get_code_point(unsigned char* s, unsigned int* code);
    unsigned int utf_8_code_point(unsigned char* s);
    /// Appends `src` to `dst`, with each code point beyond ASCII as decimal digits between `prefix` and `suffix`.
    /// @return dst
    char* utf_8_uri_encoded(char* dst, char* src, char* prefix, char* suffix);

    /// Writes the integer part of a number in decimal, with a zero byte behind it. @return text
    char* numStr(double number, char* text);

private:
    static unsigned char encode(unsigned char sextet);
    char* convertToString(double number, char* text);
    char* doNumConvert(double number, char* text);
};
