#include "SnapshotEncoder.h"

#include "PipelineText.h"
#include "SampleBytes.h"

#include <vector>

namespace
{

constexpr GstClockTime INTERVAL = 120 * GST_MSECOND; // every second of 15 pictures a second

} // namespace

bool CSnapshotEncoder::Start(GstCaps* picture, std::string& problem)
{
    return m_pipeline.Start(
        SNAPSHOT_PIPELINE_TEXT, picture, [this](GstSample* sample) { Deliver(sample); }, problem);
}

void CSnapshotEncoder::Put(GstBuffer* picture)
{
    if (GST_BUFFER_PTS(picture) >= m_next)
    {
        m_next = GST_BUFFER_PTS(picture) + INTERVAL;
        m_pipeline.Put(picture);
    }
}

void CSnapshotEncoder::Deliver(GstSample* sample)
{
    const CSampleBytes bytes(sample);
    const std::vector<unsigned char> picture(bytes.Data(), bytes.Data() + bytes.Length());
    m_sink.PutJpeg(picture, GST_BUFFER_PTS(gst_sample_get_buffer(sample)) / GST_USECOND);
}
