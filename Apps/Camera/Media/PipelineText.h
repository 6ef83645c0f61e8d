// PipelineText.h: the GStreamer pipelines of the camera, in the notation of gst-launch.
//
// Paths, devices and addresses are not in the text: they are set as properties, so no character of theirs can change
// the pipeline.
#pragma once

#include "CameraOptions.h"

#include <string>

/// The live pipeline: source, two encoders, sound. Its named elements:
///   device              v4l2src, for its property "device"
///   remote              uridecodebin, for its property "uri"; its pads go to pictures_in and sound_in
///   pictures_in, sound_in  appsrc for a file, queue for a remote camera
///   gate0, gate1        valves in front of the encoders of the main and the sub stream
///   encoder0, encoder1  the encoders
///   video0, video1, sound  appsinks with access units and G.711 A-law
/// @param fileHasSound  read for a file: without sound of its own it gets silence
std::string LivePipelineText(const CameraOptions& options, bool fileHasSound);

/// Decodes a file once: filesrc "file", appsinks "pictures" and, when the file has sound, "sound".
std::string FilePipelineText(bool fileHasSound);

/// The silence that goes to sound_in when a remote camera sends no sound.
extern const char* const SILENCE_TEXT;
