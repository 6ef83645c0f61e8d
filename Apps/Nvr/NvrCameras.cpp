#include "NvrCameras.h"

#include <algorithm>
#include <cctype>
#include <sstream>

namespace
{

/// @return false when the text is no port
bool TakePort(const std::string& text, unsigned short& port)
{
    const bool isNumber = !text.empty() && text.size() <= 5 &&
                          std::all_of(text.begin(), text.end(), [](unsigned char c) { return std::isdigit(c) != 0; });
    const int number = isNumber ? std::stoi(text) : 0;
    port = static_cast<unsigned short>(number);
    return number >= 1 && number <= 65535;
}

/// @return what is wrong with the line; empty when nothing is
std::string TakeLine(const std::string& line, const NvrOptions& options, std::vector<NvrCamera>& cameras)
{
    NvrCamera camera;
    camera.port = options.port;
    camera.user = options.user;
    camera.password = options.user.empty() ? "" : options.password;
    std::istringstream words(line);
    if (!(words >> camera.host) || camera.host.front() == '#')
    {
        return {};
    }
    std::string user;
    if (words >> user)
    {
        camera.user = user;
        std::string password;
        camera.password = words >> password ? password : options.password;
    }
    std::string rest;
    if (words >> rest)
    {
        return "more than HOST[:PORT] USER PASSWORD";
    }
    const std::size_t colon = camera.host.find(':');
    if (colon != std::string::npos && !TakePort(camera.host.substr(colon + 1), camera.port))
    {
        return "'" + camera.host.substr(colon + 1) + "' is no port";
    }
    camera.host.resize(std::min(colon, camera.host.size()));
    if (camera.host.empty())
    {
        return "no host in front of the port";
    }
    NvrOptions login;
    login.user = camera.user;
    login.password = camera.password;
    std::string problem = CredentialsProblem(login);
    if (problem.empty())
    {
        cameras.push_back(camera);
    }
    return problem;
}

} // namespace

std::string ReadNvrCameras(const std::string& text, const NvrOptions& options, std::vector<NvrCamera>& cameras)
{
    std::istringstream lines(text);
    int number = 0;
    for (std::string line; std::getline(lines, line);)
    {
        ++number;
        const std::string problem = TakeLine(line, options, cameras);
        if (!problem.empty())
        {
            return "line " + std::to_string(number) + ": " + problem;
        }
    }
    return cameras.empty() ? "it names no camera" : "";
}
