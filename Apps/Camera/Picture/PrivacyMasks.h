// PrivacyMasks.h: paints the privacy masks.
//
// Local to one thread.
#pragma once

#include "DevInterface.h"
#include "Picture.h"

#include <vector>

/// @param masks  in pixels of this picture; what lies outside of it is cut off
void PaintMasks(const Picture& picture, const std::vector<NETNS::DEV_PRIVACY_MASK>& masks);
