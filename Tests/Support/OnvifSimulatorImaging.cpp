// The simulated camera: imaging.
#include "OnvifSimulatorTables.h"

OnvifFamily OnvifImagingFamily()
{
    return {};
}
