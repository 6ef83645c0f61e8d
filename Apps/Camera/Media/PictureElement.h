// PictureElement.h: a GStreamer element that hands each raw picture to the camera, which may change it in place.
//
// Two of them stand in the live pipeline: one prepares the pictures, one looks for motion.
#pragma once

#include "GstHandles.h"
#include "Picture.h"

#include <functional>

constexpr const char* PICTURE_ELEMENT = "camerapicture";

/// Called on the media thread; `timeUs` of the picture is its running time.
using PictureHandler = std::function<void(const Picture& picture)>;

/// Makes the element known to GStreamer. Once, behind gst_init.
bool RegisterPictureElement();

/// @param element  of that kind, not yet playing
void SetPictureHandler(GstElement* element, PictureHandler handler);
