// netserver-onvif-simulator: the simulated camera as a program, for tests of other programs.
//
// netserver-onvif-simulator [--port N] [--user U] [--password P] [--dialect NAME] [--events push|pull]
//                           [--profiles 0|2]
// Prints its port and a newline, and runs until its standard input ends. Lines there change what it sees, "motion on",
// "alarm-in off" and so on: who has subscribed is told, and the next pull shows the motion.
#include "OnvifDeviceSimulator.h"
#include "OnvifNotification.h"

#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <map>
#include <string>

namespace
{

void Change(OnvifDeviceSimulator& simulator, const std::string& line)
{
    const bool isMotion = line.compare(0, 6, "motion") == 0;
    const std::string state = line.size() > 2 && line.compare(line.size() - 2, 2, "on") == 0 ? "true" : "false";
    if (isMotion)
    {
        simulator.SetValue("motion", state);
    }
    OnvifNotification notification;
    notification.to = simulator.Value("subscribe.consumer");
    notification.messages.push_back({isMotion ? ONVIF_MOTION_TOPIC : ONVIF_INPUT_TOPIC, state, ""});
    const std::size_t port = notification.to.rfind(':');
    if (port != std::string::npos)
    {
        PostOnvifNotification(static_cast<unsigned short>(std::atoi(notification.to.c_str() + port + 1)), notification);
    }
}

} // namespace

int main(int argc, char** argv)
{
    std::map<std::string, std::string> arguments = {
        {"--port", "0"},       {"--user", "admin"},  {"--password", "secret"},
        {"--dialect", "Ours"}, {"--events", "push"}, {"--profiles", "2"},
    };
    for (int i = 1; i + 1 < argc; i += 2)
    {
        arguments[argv[i]] = argv[i + 1];
    }
    const std::map<std::string, OnvifDialect> dialects = OnvifDialects();
    const auto dialect = dialects.find(arguments["--dialect"]);
    if (dialect == dialects.end() || argc % 2 == 0)
    {
        std::fprintf(stderr,
                     "usage: %s [--port N] [--user U] [--password P] [--dialect NAME] [--events push|pull]\n"
                     "       [--profiles 0|2]\n",
                     argv[0]);
        return 2;
    }
    OnvifSimulatorOptions options;
    options.user = arguments["--user"];
    options.password = arguments["--password"];
    options.dialect = dialect->second;
    options.subscriptionPolicy = arguments["--events"] == "push";
    options.pullPoint = !options.subscriptionPolicy;
    OnvifDeviceSimulator simulator(options, static_cast<unsigned short>(std::atoi(arguments["--port"].c_str())));
    if (arguments["--profiles"] == "0")
    {
        simulator.SetAnswer("GetProfiles", {"<mdw:GetProfilesResponse/>", "", "", ""});
    }
    std::printf("%u\n", simulator.Port());
    std::fflush(stdout);
    simulator.SetValue("motion", "false");
    for (std::string line; std::getline(std::cin, line);)
    {
        Change(simulator, line);
    }
    return simulator.Port() != 0 ? 0 : 1;
}
