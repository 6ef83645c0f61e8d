// CameraSettings.h: the places on disk that the camera uses.
#pragma once

#include "CameraOptions.h"

#include <string>

/// Directory of the settings: the one asked for, else netserver-camera in the user's state directory, else camera-data
/// in the current directory.
std::string DataDirectory(const CameraOptions& options);

/// The web pages: the directory asked for, else the one beside the program, else the installed one.
/// Empty when there is none.
std::string WebRoot(const CameraOptions& options);

/// Makes a directory with all above it. @param problem  receives why not
bool MakeDirectory(const std::string& path, std::string& problem);

/// Keeps the directory to this process until its end: two cameras would remove each other's recordings.
/// @return false when another process has it
bool LockDirectory(const std::string& path, std::string& problem);
