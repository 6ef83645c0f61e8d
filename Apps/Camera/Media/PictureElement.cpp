#include "PictureElement.h"

#include <gst/video/gstvideofilter.h>
#include <gst/video/video.h>

#include <utility>

namespace
{

// GObject makes and ends the instance without constructors, so what has one stands behind a pointer.
struct PictureElement
{
    GstVideoFilter parent;
    PictureHandler* handler;
};

struct PictureElementClass
{
    GstVideoFilterClass parent;
};

gpointer g_parentClass = nullptr;

PicturePlane PlaneOf(GstVideoFrame* frame, unsigned int component)
{
    return {static_cast<std::uint8_t*>(GST_VIDEO_FRAME_COMP_DATA(frame, component)),
            GST_VIDEO_FRAME_COMP_STRIDE(frame, component),
            static_cast<unsigned int>(GST_VIDEO_FRAME_COMP_WIDTH(frame, component)),
            static_cast<unsigned int>(GST_VIDEO_FRAME_COMP_HEIGHT(frame, component))};
}

GstFlowReturn OnFrame(GstVideoFilter* filter, GstVideoFrame* frame)
{
    const PictureElement* const element = reinterpret_cast<PictureElement*>(filter);
    if (*element->handler)
    {
        const GstSegment& segment = GST_BASE_TRANSFORM(filter)->segment;
        const GstClockTime time = gst_segment_to_running_time(&segment, GST_FORMAT_TIME, GST_BUFFER_PTS(frame->buffer));
        const Picture picture = {PlaneOf(frame, 0), PlaneOf(frame, 1), PlaneOf(frame, 2),
                                 GST_CLOCK_TIME_IS_VALID(time) ? time / GST_USECOND : 0};
        (*element->handler)(picture);
    }
    return GST_FLOW_OK;
}

void OnFinalize(GObject* object)
{
    delete reinterpret_cast<PictureElement*>(object)->handler;
    G_OBJECT_CLASS(g_parentClass)->finalize(object);
}

void InitClass(gpointer klass, gpointer /*data*/)
{
    g_parentClass = g_type_class_peek_parent(klass);
    G_OBJECT_CLASS(klass)->finalize = OnFinalize;
    GST_VIDEO_FILTER_CLASS(klass)->transform_frame_ip = OnFrame;
    GstCaps* const caps = gst_caps_from_string(GST_VIDEO_CAPS_MAKE("I420"));
    for (const GstPadDirection direction : {GST_PAD_SINK, GST_PAD_SRC})
    {
        gst_element_class_add_pad_template(
            GST_ELEMENT_CLASS(klass),
            gst_pad_template_new(direction == GST_PAD_SINK ? "sink" : "src", direction, GST_PAD_ALWAYS, caps));
    }
    gst_caps_unref(caps);
    gst_element_class_set_static_metadata(GST_ELEMENT_CLASS(klass), "Camera picture", "Filter/Effect/Video",
                                          "Hands raw pictures to the camera", "netserver");
}

void InitInstance(GTypeInstance* instance, gpointer /*klass*/)
{
    reinterpret_cast<PictureElement*>(instance)->handler = new PictureHandler();
}

} // namespace

bool RegisterPictureElement()
{
    GTypeInfo info = {};
    info.class_size = sizeof(PictureElementClass);
    info.class_init = InitClass;
    info.instance_size = sizeof(PictureElement);
    info.instance_init = InitInstance;
    const GType type = g_type_register_static(GST_TYPE_VIDEO_FILTER, "CameraPictureElement", &info, GTypeFlags(0));
    return gst_element_register(nullptr, PICTURE_ELEMENT, GST_RANK_NONE, type) != FALSE;
}

void SetPictureHandler(GstElement* element, PictureHandler handler)
{
    *reinterpret_cast<PictureElement*>(element)->handler = std::move(handler);
}
