// The simulated camera: PTZ and preset tours.
#include "OnvifSimulatorTables.h"

OnvifFamily OnvifPtzFamily()
{
    return {};
}
