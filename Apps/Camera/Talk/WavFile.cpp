#include "WavFile.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <vector>

namespace
{

constexpr std::size_t HEADER_BYTES = 44;
constexpr std::uint32_t RATE = 8000;
constexpr std::uint32_t SAMPLE_BYTES = 2;
constexpr std::uint32_t MAX_DATA_BYTES = 0x7fffffff;

void PutLE16(unsigned char* out, std::uint32_t value)
{
    out[0] = static_cast<unsigned char>(value);
    out[1] = static_cast<unsigned char>(value >> 8);
}

void PutLE32(unsigned char* out, std::uint32_t value)
{
    PutLE16(out, value);
    PutLE16(out + 2, value >> 16);
}

/// Four characters, without a zero byte behind them.
void PutTag(unsigned char* out, const char (&tag)[5])
{
    std::copy_n(tag, 4, out);
}

} // namespace

CWavFile::~CWavFile()
{
    if (m_file != nullptr)
    {
        CWavFile::Flush();
        std::fclose(m_file);
    }
}

bool CWavFile::Open(const std::string& path, std::string& problem)
{
    m_file = std::fopen(path.c_str(), "wbe");
    if (m_file == nullptr || !WriteHeader() || std::fflush(m_file) != 0)
    {
        problem = "'" + path + "' cannot be written: " + std::strerror(errno) + "; give --talk-out another file";
        return false;
    }
    return true;
}

// "RIFF" size "WAVE" | "fmt " 16, PCM, channels, rate, bytes a second, bytes a sample, bits | "data" size
bool CWavFile::WriteHeader()
{
    unsigned char header[HEADER_BYTES] = {};
    PutTag(header, "RIFF");
    PutLE32(header + 4, static_cast<std::uint32_t>(HEADER_BYTES) - 8 + m_dataBytes);
    PutTag(header + 8, "WAVE");
    PutTag(header + 12, "fmt ");
    PutLE32(header + 16, 16);
    PutLE16(header + 20, 1);
    PutLE16(header + 22, 1);
    PutLE32(header + 24, RATE);
    PutLE32(header + 28, RATE * SAMPLE_BYTES);
    PutLE16(header + 32, SAMPLE_BYTES);
    PutLE16(header + 34, 8 * SAMPLE_BYTES);
    PutTag(header + 36, "data");
    PutLE32(header + 40, m_dataBytes);
    return std::fseek(m_file, 0, SEEK_SET) == 0 && std::fwrite(header, 1, sizeof(header), m_file) == sizeof(header) &&
           std::fseek(m_file, 0, SEEK_END) == 0;
}

void CWavFile::Put(const std::int16_t* samples, std::size_t count)
{
    std::vector<unsigned char> bytes(count * SAMPLE_BYTES);
    for (std::size_t index = 0; index < count; ++index)
    {
        PutLE16(&bytes[index * SAMPLE_BYTES], static_cast<std::uint16_t>(samples[index]));
    }
    if (m_file != nullptr && bytes.size() <= MAX_DATA_BYTES - m_dataBytes)
    {
        m_dataBytes += static_cast<std::uint32_t>(std::fwrite(bytes.data(), 1, bytes.size(), m_file));
    }
}

void CWavFile::Flush()
{
    if (m_file != nullptr)
    {
        WriteHeader();
        std::fflush(m_file);
    }
}
