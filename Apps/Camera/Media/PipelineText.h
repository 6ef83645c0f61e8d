// PipelineText.h: the GStreamer pipelines of the camera, in the notation of gst-launch.
//
// Paths, devices and addresses are not in the text: they are set as properties, so no character of theirs can change
// the pipeline.
#pragma once

#include "CameraOptions.h"
#include "DevInterface.h"

#include <string>

/// Caps of the camera's pictures: of one size and rate, whatever the source gives.
std::string PictureCapsText(const CameraOptions& options);

/// The live pipeline: source, work on the pictures, sound. Its named elements:
///   device              v4l2src, for its property "device"
///   remote              uridecodebin, for its property "uri"; its pads go to pictures_in and sound_in
///   pictures_in, sound_in  appsrc for a file, queue for a remote camera
///   balance, turn       videobalance and videoflip
///   prepare, motion     picture elements
///   osd_time, osd_name  clockoverlay and textoverlay
///   pictures, sound     appsinks with raw pictures (I420) and G.711 A-law
/// @param fileHasSound  read for a file: without sound of its own it gets silence
std::string LivePipelineText(const CameraOptions& options, bool fileHasSound);

/// Decodes a file once: filesrc "file", appsinks "pictures" and, when the file has sound, "sound".
std::string FilePipelineText(bool fileHasSound);

/// Encodes a stream: appsrc "in", x264enc "encoder", appsink "out" with access units.
std::string EncoderPipelineText(const NETNS::DEV_VIDEO_PROFILE& profile);

/// Makes JPEG pictures: appsrc "in", appsink "out".
extern const char* const SNAPSHOT_PIPELINE_TEXT;

/// The silence that goes to sound_in when a remote camera sends no sound.
extern const char* const SILENCE_TEXT;
