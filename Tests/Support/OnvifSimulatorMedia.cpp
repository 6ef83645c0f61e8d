// The simulated camera: media.
#include "OnvifSimulatorTables.h"

OnvifFamily OnvifMediaFamily()
{
    return {};
}
