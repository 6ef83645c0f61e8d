// StreamChoices.h: what the streams of this camera can be set to. The camera's picture has the size and the rate of the
// command line; a stream shows it whole, at that size or smaller and at that rate or slower.
#pragma once

#include "CameraOptions.h"
#include "DevInterface.h"

#include <vector>

/// @param stream  0 main, 1 sub
NETNS::DEV_VIDEO_PROFILE DefaultProfile(const CameraOptions& options, unsigned int stream);

/// From the largest to the smallest; all sides are even.
std::vector<NETNS::DEV_RESOLUTION> Resolutions(const CameraOptions& options, unsigned int stream);

NETNS::DEV_VIDEO_ENCODE_CAPS EncodeCaps(const CameraOptions& options, unsigned int stream);

/// Whether the stream can be set so.
bool IsPossible(const CameraOptions& options, unsigned int stream, const NETNS::DEV_VIDEO_PROFILE& profile);
