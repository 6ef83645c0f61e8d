// The requests: the imaging commands.
#include "GetCmd.h"
