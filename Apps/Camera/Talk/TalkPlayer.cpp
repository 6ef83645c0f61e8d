#include "TalkPlayer.h"

#include "CameraLog.h"

namespace
{

constexpr const char* PLAYER_TEXT =
    "appsrc name=in format=time is-live=true do-timestamp=true leaky-type=downstream max-bytes=0 max-time=500000000"
    " caps=\"audio/x-raw,format=S16LE,rate=8000,channels=1,layout=interleaved\""
    " ! audioconvert ! audioresample ! autoaudiosink";

} // namespace

CTalkPlayer::~CTalkPlayer()
{
    CTalkPlayer::Flush();
}

bool CTalkPlayer::Start()
{
    m_pipeline.reset(gst_parse_launch(PLAYER_TEXT, nullptr));
    if (m_pipeline != nullptr)
    {
        m_input.reset(gst_bin_get_by_name(GST_BIN(m_pipeline.get()), "in"));
        if (gst_element_set_state(m_pipeline.get(), GST_STATE_PLAYING) != GST_STATE_CHANGE_FAILURE)
        {
            return true;
        }
        Flush();
    }
    m_failed = true;
    Say("there is no sound device; what clients say is not heard");
    return false;
}

void CTalkPlayer::Put(const std::int16_t* samples, std::size_t count)
{
    if (m_failed || (m_pipeline == nullptr && !Start()))
    {
        return;
    }
    const std::size_t bytes = count * sizeof(*samples);
    GstBuffer* const buffer = gst_buffer_new_allocate(nullptr, bytes, nullptr);
    gst_buffer_fill(buffer, 0, samples, bytes);
    gst_app_src_push_buffer(GST_APP_SRC(m_input.get()), buffer);
}

void CTalkPlayer::Flush()
{
    if (m_pipeline != nullptr)
    {
        gst_element_set_state(m_pipeline.get(), GST_STATE_NULL);
        m_input.reset();
        m_pipeline.reset();
    }
}
