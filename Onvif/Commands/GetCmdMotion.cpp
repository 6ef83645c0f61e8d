// The requests: motion, relays and digital inputs.
#include "GetCmd.h"
