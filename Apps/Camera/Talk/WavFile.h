// WavFile.h: writes speech into a WAV file: PCM, 16 bits, one channel, 8000 samples a second.
//
// RTSP scheduler thread only.
#pragma once

#include "TalkSink.h"

#include <cstdio>
#include <memory>
#include <string>

class CWavFile : public CTalkSink
{
public:
    ~CWavFile() override;

    /// Makes the file anew. @param problem  receives why not
    bool Open(const std::string& path, std::string& problem);

    void Put(const std::int16_t* samples, std::size_t count) override;

    /// Writes the lengths into the header: the file can be played from now on.
    void Flush() override;

private:
    bool WriteHeader();

    std::FILE* m_file = nullptr;
    std::uint32_t m_dataBytes = 0;
};
