// TalkPlayer.h: plays speech on the sound device of this machine. A machine without one stays silent.
//
// RTSP scheduler thread only.
#pragma once

#include "GstHandles.h"
#include "TalkSink.h"

class CTalkPlayer : public CTalkSink
{
public:
    CTalkPlayer() = default;
    ~CTalkPlayer() override;

    void Put(const std::int16_t* samples, std::size_t count) override;
    void Flush() override;

private:
    bool Start();

    GstElementPtr m_pipeline;
    GstElementPtr m_input;
    bool m_failed = false;
};
