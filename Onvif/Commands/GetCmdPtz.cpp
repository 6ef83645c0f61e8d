// The requests: the PTZ and cruise commands.
#include "GetCmd.h"
