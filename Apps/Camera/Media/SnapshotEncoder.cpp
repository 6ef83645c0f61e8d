#include "SnapshotEncoder.h"

#include "PipelineText.h"
#include "SampleBytes.h"

#include <vector>

namespace
{

constexpr GstClockTime INTERVAL = 120 * GST_MSECOND; // every second of 15 pictures a second

} // namespace

std::unique_ptr<CSnapshotEncoder> CSnapshotEncoder::Make(GstCaps* picture, CFrameSink& sink, std::string& problem)
{
    std::unique_ptr<CSnapshotEncoder> self(new CSnapshotEncoder(sink));
    GError* raw = nullptr;
    self->m_pipeline.reset(gst_parse_launch(SNAPSHOT_PIPELINE_TEXT, &raw));
    const GErrorPtr error(raw);
    if (error != nullptr)
    {
        problem = error->message;
        return nullptr;
    }
    self->m_input.reset(gst_bin_get_by_name(GST_BIN(self->m_pipeline.get()), "in"));
    gst_app_src_set_caps(GST_APP_SRC(self->m_input.get()), picture);
    const GstElementPtr output(gst_bin_get_by_name(GST_BIN(self->m_pipeline.get()), "out"));
    GstAppSinkCallbacks callbacks = {};
    callbacks.new_sample = &CSnapshotEncoder::OnPicture;
    gst_app_sink_set_callbacks(GST_APP_SINK(output.get()), &callbacks, self.get(), nullptr);
    if (gst_element_set_state(self->m_pipeline.get(), GST_STATE_PLAYING) == GST_STATE_CHANGE_FAILURE)
    {
        problem = "the snapshot encoder does not start";
        return nullptr;
    }
    return self;
}

CSnapshotEncoder::~CSnapshotEncoder()
{
    if (m_pipeline != nullptr)
    {
        gst_element_set_state(m_pipeline.get(), GST_STATE_NULL);
    }
}

void CSnapshotEncoder::Put(GstBuffer* picture)
{
    if (GST_BUFFER_PTS(picture) >= m_next)
    {
        m_next = GST_BUFFER_PTS(picture) + INTERVAL;
        gst_app_src_push_buffer(GST_APP_SRC(m_input.get()), gst_buffer_ref(picture));
    }
}

GstFlowReturn CSnapshotEncoder::OnPicture(GstAppSink* source, gpointer self)
{
    const GstSamplePtr sample(gst_app_sink_pull_sample(source));
    if (sample == nullptr)
    {
        return GST_FLOW_EOS;
    }
    const CSampleBytes bytes(sample.get());
    const std::vector<unsigned char> picture(bytes.Data(), bytes.Data() + bytes.Length());
    static_cast<CSnapshotEncoder*>(self)->m_sink.PutJpeg(picture, GST_BUFFER_PTS(gst_sample_get_buffer(sample.get())) /
                                                                      GST_USECOND);
    return GST_FLOW_OK;
}
