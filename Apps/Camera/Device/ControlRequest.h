// ControlRequest.h: the camera's own requests, which the library hands over as they came.
//
// A client POSTs, with a Basic login, a body of the mark "ORBIT-700" and a command, such as "ORBIT-700 sensor 0 close".
#pragma once

#include <cstddef>
#include <string>
#include <vector>

struct ControlRequest
{
    bool isControl = false; ///< a POST whose body begins with the mark
    std::string user;       ///< of the Basic login; empty without one
    std::string password;
    std::vector<std::string> words; ///< of the command, without the mark
};

/// Reads any bytes.
ControlRequest ReadControlRequest(const char* message, std::size_t length);
