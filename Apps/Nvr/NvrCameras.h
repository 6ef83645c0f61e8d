// NvrCameras.h: the file that names the cameras to watch.
#pragma once

#include "NvrOptions.h"

#include <string>
#include <vector>

/// One camera of the file, with what the command line says where a line is silent.
struct NvrCamera
{
    std::string host;
    unsigned short port = 80;
    std::string user;
    std::string password;
};

/// Reads a line for each camera: HOST[:PORT] [USER [PASSWORD]]. Empty lines and those that begin with "#" are left out.
/// @param options  give port, user and password where a line does not
/// @return what is wrong with the text, with the line's number; empty when nothing is
std::string ReadNvrCameras(const std::string& text, const NvrOptions& options, std::vector<NvrCamera>& cameras);
