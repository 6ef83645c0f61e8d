// The simulated camera: analytics, relays and digital inputs.
#include "OnvifSimulatorTables.h"

OnvifFamily OnvifAnalyticsFamily()
{
    return {};
}
