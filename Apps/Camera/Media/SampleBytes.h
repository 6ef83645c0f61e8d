// SampleBytes.h: the bytes of a GStreamer sample, for as long as both live.
#pragma once

#include "GstHandles.h"

#include <cstddef>

class CSampleBytes
{
public:
    explicit CSampleBytes(GstSample* sample)
        : m_buffer(gst_sample_get_buffer(sample)), m_mapped(gst_buffer_map(m_buffer, &m_map, GST_MAP_READ) != FALSE)
    {
    }
    ~CSampleBytes()
    {
        if (m_mapped)
        {
            gst_buffer_unmap(m_buffer, &m_map);
        }
    }
    CSampleBytes(const CSampleBytes&) = delete;
    CSampleBytes& operator=(const CSampleBytes&) = delete;

    const unsigned char* Data() const { return m_mapped ? m_map.data : nullptr; }
    std::size_t Length() const { return m_mapped ? m_map.size : 0; }

private:
    GstBuffer* m_buffer;
    GstMapInfo m_map = GST_MAP_INFO_INIT;
    const bool m_mapped;
};
