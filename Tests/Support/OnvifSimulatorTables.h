// OnvifSimulatorTables.h: the operations of the simulated camera, a table for each family in a source of its own.
//
// A row names an operation, the service that has it and the function that answers it. What the camera keeps are texts
// by name ("dns.manual"); the tables' sources name theirs and their first values.
#pragma once

#include "OnvifDeviceSimulator.h"

#include <map>
#include <string>
#include <vector>

using OnvifValues = std::map<std::string, std::string>;

struct OnvifCall
{
    const OnvifSoapRequest& request;
    const OnvifSimulatorOptions& options;
    OnvifValues& values;
    std::string address; ///< "http://host:port/" as the camera announces itself
};

struct OnvifOperationRow
{
    const char* operation;
    const char* service; ///< our prefix; empty: at any path
    OnvifAnswer (*answer)(OnvifCall& call);
};

struct OnvifFamily
{
    std::vector<OnvifOperationRow> operations;
    OnvifValues values; ///< at the start
};

OnvifFamily OnvifDeviceFamily();
OnvifFamily OnvifEventFamily();
OnvifFamily OnvifMediaFamily();
OnvifFamily OnvifImagingFamily();
OnvifFamily OnvifPtzFamily();
OnvifFamily OnvifAnalyticsFamily();

/// An answer with one element below the response.
inline OnvifAnswer OnvifBody(const std::string& body)
{
    return {body, "", "", ""};
}
