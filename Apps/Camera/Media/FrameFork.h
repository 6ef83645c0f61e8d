// FrameFork.h: hands each frame to two places, one after the other.
#pragma once

#include "FrameSink.h"

class CFrameFork : public CFrameSink
{
public:
    /// @param first, second  borrowed for the fork's life
    CFrameFork(CFrameSink& first, CFrameSink& second) : m_first(first), m_second(second) {}

    void PutVideo(int stream, const std::vector<unsigned char>& frame, bool keyFrame,
                  std::uint64_t presentationUs) override
    {
        m_first.PutVideo(stream, frame, keyFrame, presentationUs);
        m_second.PutVideo(stream, frame, keyFrame, presentationUs);
    }
    void PutAudio(const std::vector<unsigned char>& chunk, std::uint64_t presentationUs) override
    {
        m_first.PutAudio(chunk, presentationUs);
        m_second.PutAudio(chunk, presentationUs);
    }
    void PutJpeg(const std::vector<unsigned char>& picture, std::uint64_t presentationUs) override
    {
        m_first.PutJpeg(picture, presentationUs);
        m_second.PutJpeg(picture, presentationUs);
    }

private:
    CFrameSink& m_first;
    CFrameSink& m_second;
};
