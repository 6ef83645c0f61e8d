#include "AppPipeline.h"

#include <utility>

CAppPipeline::~CAppPipeline()
{
    if (m_pipeline != nullptr)
    {
        gst_element_set_state(m_pipeline.get(), GST_STATE_NULL);
    }
}

bool CAppPipeline::Start(const std::string& text, GstCaps* picture, OnSample onSample, std::string& problem)
{
    m_onSample = std::move(onSample);
    GError* raw = nullptr;
    m_pipeline.reset(gst_parse_launch(text.c_str(), &raw));
    const GErrorPtr error(raw);
    if (error != nullptr)
    {
        problem = error->message;
        return false;
    }
    m_input = Child("in");
    gst_app_src_set_caps(GST_APP_SRC(m_input.get()), picture);
    GstAppSinkCallbacks callbacks = {};
    callbacks.new_sample = &CAppPipeline::OnNewSample;
    gst_app_sink_set_callbacks(GST_APP_SINK(Child("out").get()), &callbacks, this, nullptr);
    if (gst_element_set_state(m_pipeline.get(), GST_STATE_PLAYING) == GST_STATE_CHANGE_FAILURE)
    {
        problem = "an encoder does not start";
        return false;
    }
    return true;
}

void CAppPipeline::Put(GstBuffer* picture)
{
    gst_app_src_push_buffer(GST_APP_SRC(m_input.get()), gst_buffer_ref(picture));
}

GstElementPtr CAppPipeline::Child(const char* name) const
{
    return GstElementPtr(gst_bin_get_by_name(GST_BIN(m_pipeline.get()), name));
}

GstFlowReturn CAppPipeline::OnNewSample(GstAppSink* source, gpointer self)
{
    const GstSamplePtr sample(gst_app_sink_pull_sample(source));
    if (sample == nullptr)
    {
        return GST_FLOW_EOS;
    }
    static_cast<CAppPipeline*>(self)->m_onSample(sample.get());
    return GST_FLOW_OK;
}
