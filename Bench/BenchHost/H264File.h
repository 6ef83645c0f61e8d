// H264File.h: an Annex B file as the frames that the library takes. Local to one thread.
#pragma once

#include <string>
#include <vector>

struct H264Frame
{
    std::vector<unsigned char> data;
    bool keyFrame;
};

/// Cuts a file into access units (ITU-T H.264, 7.4.1.2.3) and normalises each.
/// @param frames  receives the frames, from the first key frame on
/// @param why     receives what is wrong with the file
/// @return false when it cannot be read or holds no frame that can be served
bool ReadH264File(const std::string& path, std::vector<H264Frame>& frames, std::string& why);
