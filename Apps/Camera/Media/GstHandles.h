// GstHandles.h: owners of GStreamer's reference-counted objects.
#pragma once

#include <gst/app/app.h>
#include <gst/gst.h>

#include <memory>

struct GstObjectRelease
{
    void operator()(gpointer object) const { gst_object_unref(object); }
};
struct GstMessageRelease
{
    void operator()(GstMessage* message) const { gst_message_unref(message); }
};
struct GstSampleRelease
{
    void operator()(GstSample* sample) const { gst_sample_unref(sample); }
};
struct GstCapsRelease
{
    void operator()(GstCaps* caps) const { gst_caps_unref(caps); }
};
struct GErrorRelease
{
    void operator()(GError* error) const { g_error_free(error); }
};
struct GFree
{
    void operator()(gpointer memory) const { g_free(memory); }
};

using GstElementPtr = std::unique_ptr<GstElement, GstObjectRelease>;
using GstBusPtr = std::unique_ptr<GstBus, GstObjectRelease>;
using GstPadPtr = std::unique_ptr<GstPad, GstObjectRelease>;
using GstMessagePtr = std::unique_ptr<GstMessage, GstMessageRelease>;
using GstSamplePtr = std::unique_ptr<GstSample, GstSampleRelease>;
using GstCapsPtr = std::unique_ptr<GstCaps, GstCapsRelease>;
using GErrorPtr = std::unique_ptr<GError, GErrorRelease>;
using GCharsPtr = std::unique_ptr<gchar, GFree>;
