#include "Base64Coder.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstring>
#include <vector>

namespace
{

const unsigned char MAP_PAD = 254;
const unsigned char MAP_FOREIGN = 255;

// The digits of an "=" in the input count as sextet 0 and make every group from there on yield a byte less.
const int FULL_GROUP_BYTES = 3;

void EncodeGroup(const unsigned char* in, unsigned long count, char* out)
{
    const unsigned int second = count > 1 ? in[1] : 0u;
    const unsigned int third = count > 2 ? in[2] : 0u;
    const unsigned int bits = (static_cast<unsigned int>(in[0]) << 16) | (second << 8) | third;
    out[0] = g_pCodes[(bits >> 18) & 0x3F];
    out[1] = g_pCodes[(bits >> 12) & 0x3F];
    out[2] = count > 1 ? g_pCodes[(bits >> 6) & 0x3F] : g_pCodes[64];
    out[3] = count > 2 ? g_pCodes[bits & 0x3F] : g_pCodes[64];
}

std::uint32_t SextetOf(char c)
{
    const unsigned char byte = static_cast<unsigned char>(c);
    return byte < 128 ? Base64IdxTab[byte] : MAP_FOREIGN;
}

// Bytes of a C string that grow sextet by sextet; what lies beyond the room is dropped.
class CTextBytes
{
public:
    CTextBytes(char* out, size_t room) : m_out(out), m_room(room) {}

    bool IsFull() const { return m_finished >= m_room; }
    unsigned int Finished() const { return static_cast<unsigned int>(m_finished); }
    bool HasOpenByte() const { return m_phase != 0; }

    void Add(std::uint32_t sextet)
    {
        switch (m_phase)
        {
        case 0:
            m_open = static_cast<unsigned char>(sextet << 2);
            break;
        case 1:
            Finish(m_open | (sextet >> 4));
            m_open = static_cast<unsigned char>(sextet << 4);
            break;
        case 2:
            Finish(m_open | (sextet >> 2));
            m_open = static_cast<unsigned char>(sextet << 6);
            break;
        default:
            Finish(m_open | sextet);
            break;
        }
        m_phase = (m_phase + 1) % 4;
    }

    // Writes the byte under construction behind the finished ones, where there is room.
    void PutOpenByte()
    {
        if (!IsFull())
        {
            m_out[m_finished] = HasOpenByte() ? static_cast<char>(m_open) : '\0';
        }
    }

private:
    void Finish(std::uint32_t byte)
    {
        if (!IsFull())
        {
            m_out[m_finished++] = static_cast<char>(byte);
        }
    }

    char* const m_out;
    const size_t m_room;
    size_t m_finished = 0;
    int m_phase = 0;
    unsigned char m_open = 0;
};

// @return true when an "=" ended the input
bool DecodeText(const char* src, CTextBytes& bytes)
{
    for (; *src != '\0' && !bytes.IsFull(); ++src)
    {
        if (*src == '=')
        {
            return true;
        }
        const std::uint32_t sextet = SextetOf(*src);
        if (sextet != MAP_FOREIGN)
        {
            bytes.Add(sextet);
        }
    }
    return false;
}

} // namespace

const char* const g_pCodes = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/=";

const unsigned char g_pMap[256] = {
    // clang-format off
    255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255,
    255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255,
    255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255,  62, 255, 255, 255,  63,
     52,  53,  54,  55,  56,  57,  58,  59,  60,  61, 255, 255, 255, 254, 255, 255,
    255,   0,   1,   2,   3,   4,   5,   6,   7,   8,   9,  10,  11,  12,  13,  14,
     15,  16,  17,  18,  19,  20,  21,  22,  23,  24,  25, 255, 255, 255, 255, 255,
    255,  26,  27,  28,  29,  30,  31,  32,  33,  34,  35,  36,  37,  38,  39,  40,
     41,  42,  43,  44,  45,  46,  47,  48,  49,  50,  51, 255, 255, 255, 255, 255,
    255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255,
    255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255,
    255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255,
    255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255,
    255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255,
    255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255,
    255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255,
    255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255,
    // clang-format on
};

const std::uint32_t Base64IdxTab[128] = {
    // clang-format off
    255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255,
    255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255,
    255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255,  62, 255, 255, 255,  63,
     52,  53,  54,  55,  56,  57,  58,  59,  60,  61, 255, 255, 255, 255, 255, 255,
    255,   0,   1,   2,   3,   4,   5,   6,   7,   8,   9,  10,  11,  12,  13,  14,
     15,  16,  17,  18,  19,  20,  21,  22,  23,  24,  25, 255, 255, 255, 255, 255,
    255,  26,  27,  28,  29,  30,  31,  32,  33,  34,  35,  36,  37,  38,  39,  40,
     41,  42,  43,  44,  45,  46,  47,  48,  49,  50,  51, 255, 255, 255, 255, 255,
    // clang-format on
};

int CBase64Coder::Encode(const unsigned char* src, unsigned long srcLen, unsigned char* dst, unsigned long* dstLen)
{
    const unsigned long MAX_SOURCE = ULONG_MAX / 4 * 3 - 4; // beyond it the text's length is no number
    if (dst == nullptr || *dstLen == 0 || srcLen > MAX_SOURCE || *dstLen < (srcLen + 2) / 3 * 4 + 1)
    {
        return 0;
    }
    char* out = reinterpret_cast<char*>(dst);
    for (unsigned long i = 0; i < srcLen; i += 3, out += 4)
    {
        EncodeGroup(src + i, srcLen - i, out);
    }
    *out = '\0';
    *dstLen = (srcLen + 2) / 3 * 4;
    return 1;
}

int CBase64Coder::Encode(const unsigned char* src, unsigned long srcLen, std::string& dst)
{
    dst.clear();
    dst.reserve((srcLen + 2) / 3 * 4);
    for (unsigned long i = 0; i < srcLen; i += 3)
    {
        char group[4];
        EncodeGroup(src + i, srcLen - i, group);
        dst.append(group, sizeof(group));
    }
    return 1;
}

int CBase64Coder::Decode(const std::string& src, unsigned char* dst, unsigned long* dstLen)
{
    const unsigned long capacity = *dstLen;
    unsigned long written = 0;
    std::uint32_t bits = 0;
    int sextets = 0;
    int remaining = FULL_GROUP_BYTES; // never set back: an inner "=" also shortens the groups behind it

    for (const char c : src)
    {
        const unsigned char value = g_pMap[static_cast<unsigned char>(c)];
        if (value == MAP_FOREIGN)
        {
            continue;
        }
        if (value == MAP_PAD)
        {
            remaining = std::max(remaining - 1, 1); // a group always writes its first byte
        }
        bits = (bits << 6) | (value == MAP_PAD ? 0u : value);
        if (++sextets < 4)
        {
            continue;
        }
        if (capacity - written < static_cast<unsigned long>(remaining))
        {
            return 0;
        }
        for (int i = 0; i < remaining; ++i)
        {
            dst[written++] = static_cast<unsigned char>(bits >> (16 - 8 * i));
        }
        bits = 0;
        sextets = 0;
    }
    *dstLen = written;
    return 1;
}

unsigned int CBase64Coder::base64decone(const char* src, char* dst)
{
    CTextBytes bytes(dst, SIZE_MAX);
    if (DecodeText(src, bytes))
    {
        bytes.PutOpenByte();
        return bytes.Finished() + 1;
    }
    dst[bytes.Finished()] = '\0';
    return bytes.Finished();
}

unsigned int CBase64Coder::base64decone(const char* src, char* dst, unsigned int capacity)
{
    if (capacity == 0)
    {
        return 0;
    }
    CTextBytes bytes(dst, capacity - 1);
    if (!DecodeText(src, bytes))
    {
        dst[bytes.Finished()] = '\0';
        return bytes.Finished();
    }
    bytes.PutOpenByte();
    const unsigned int end = bytes.Finished() + (bytes.HasOpenByte() ? 1 : 0);
    dst[std::min(end, capacity - 1)] = '\0';
    return bytes.Finished() + 1;
}

unsigned char CBase64Coder::encode(unsigned char sextet)
{
    return static_cast<unsigned char>(g_pCodes[sextet < 63 ? sextet : 63]);
}

void CBase64Coder::b64encode(unsigned char* buf)
{
    const size_t length = std::strlen(reinterpret_cast<const char*>(buf));
    std::vector<unsigned char> text(length * 4 / 3 + 8, 0);
    size_t written = 0;
    for (size_t i = 0; i < length; i += 3)
    {
        const unsigned int first = buf[i];
        const unsigned int second = i + 1 < length ? buf[i + 1] : 0u;
        const unsigned int third = i + 2 < length ? buf[i + 2] : 0u;
        const unsigned int bits = (first << 16) | (second << 8) | third;
        text[written++] = encode(static_cast<unsigned char>(bits >> 18));
        text[written++] = encode(static_cast<unsigned char>((bits >> 12) & 0x3F));
        text[written++] = i + 1 < length ? encode(static_cast<unsigned char>((bits >> 6) & 0x3F)) : '=';
        text[written++] = i + 2 < length ? encode(static_cast<unsigned char>(bits & 0x3F)) : '=';
    }
    std::memcpy(buf, text.data(), written + 1);
}

unsigned int CBase64Coder::utf_8_encoded_size(unsigned char lead)
{
    static const struct
    {
        unsigned char first;
        unsigned int size;
    } SIZES[] = {{0xFC, 6}, {0xF8, 5}, {0xF0, 4}, {0xE0, 3}, {0xC0, 2}, {0x80, 0}}; // first match wins
    for (const auto& row : SIZES)
    {
        // 0xFE and 0xFF begin no sequence of up to six bytes; they count like 0xFC.
        if (lead >= row.first)
        {
            return row.size;
        }
    }
    return 1;
}

unsigned int CBase64Coder::utf_8_get_code_point(unsigned char* s, unsigned int* code)
{
    const unsigned int size = utf_8_encoded_size(s[0]);
    if (size < 2)
    {
        *code = size == 0 ? 0 : s[0];
        return size;
    }
    *code = (s[0] & (0xFFu >> size)) << (6 * (size - 1));
    for (unsigned int i = 1; i < size && s[i] != 0; ++i)
    {
        *code |= (s[i] & 0x3Fu) << (6 * (size - 1 - i));
    }
    return size;
}

unsigned int CBase64Coder::utf_8_code_point(unsigned char* s)
{
    unsigned int code = 0;
    utf_8_get_code_point(s, &code);
    return code;
}

char* CBase64Coder::utf_8_uri_encoded(char* dst, char* src, char* prefix, char* suffix)
{
    char* out = dst + std::strlen(dst);
    for (; *src != '\0'; ++src)
    {
        const unsigned char byte = static_cast<unsigned char>(*src);
        const unsigned int code = utf_8_code_point(reinterpret_cast<unsigned char*>(src));
        if (code == 0)
        {
            continue; // a continuation byte: the lead byte in front has told the whole code point
        }
        if (code == byte)
        {
            *out++ = *src;
            continue;
        }
        char digits[16];
        numStr(code, digits);
        for (const char* part :
             {static_cast<const char*>(prefix), static_cast<const char*>(digits), static_cast<const char*>(suffix)})
        {
            const size_t length = std::strlen(part);
            std::memcpy(out, part, length);
            out += length;
        }
    }
    *out = '\0';
    return dst;
}

char* CBase64Coder::numStr(double number, char* text)
{
    *convertToString(number, text) = '\0';
    return text;
}

char* CBase64Coder::convertToString(double number, char* text)
{
    if (number < 0)
    {
        *text++ = '-';
        number = -number;
    }
    return doNumConvert(std::floor(number), text);
}

// Writes the digits in front of the last one first. @return where the next character goes
char* CBase64Coder::doNumConvert(double number, char* text)
{
    if (number >= 10)
    {
        text = doNumConvert(std::floor(number / 10), text);
    }
    *text++ = static_cast<char>('0' + static_cast<int>(std::fmod(number, 10)));
    return text;
}
