#include "CameraLog.h"

#include <cstdio>

void Say(const std::string& text)
{
    std::fprintf(stderr, "netserver-camera: %s\n", text.c_str());
}
