// CameraLog.h: what the camera tells a person, on standard error. Any thread.
#pragma once

#include <string>

/// One line.
void Say(const std::string& text);
