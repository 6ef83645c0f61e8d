// netserver-onvif-simulator: the simulated camera as a program, for tests of other programs.
//
// netserver-onvif-simulator [--port N] [--user U] [--password P] [--dialect NAME] [--profiles 0|2]
// Prints its port and a newline, and runs until its standard input ends.
#include "OnvifDeviceSimulator.h"

#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>

int main(int argc, char** argv)
{
    std::map<std::string, std::string> arguments = {
        {"--port", "0"}, {"--user", "admin"}, {"--password", "secret"}, {"--dialect", "Ours"}, {"--profiles", "2"}};
    for (int i = 1; i + 1 < argc; i += 2)
    {
        arguments[argv[i]] = argv[i + 1];
    }
    const std::map<std::string, OnvifDialect> dialects = OnvifDialects();
    const auto dialect = dialects.find(arguments["--dialect"]);
    if (dialect == dialects.end() || argc % 2 == 0)
    {
        std::fprintf(stderr, "usage: %s [--port N] [--user U] [--password P] [--dialect NAME] [--profiles 0|2]\n",
                     argv[0]);
        return 2;
    }
    OnvifSimulatorOptions options;
    options.user = arguments["--user"];
    options.password = arguments["--password"];
    options.dialect = dialect->second;
    OnvifDeviceSimulator simulator(options, static_cast<unsigned short>(std::atoi(arguments["--port"].c_str())));
    if (arguments["--profiles"] == "0")
    {
        simulator.SetAnswer("GetProfiles", {"<mdw:GetProfilesResponse/>", "", "", ""});
    }
    std::printf("%u\n", simulator.Port());
    std::fflush(stdout);
    while (std::getchar() != EOF)
    {
    }
    return simulator.Port() != 0 ? 0 : 1;
}
