// The requests: the media commands.
#include "GetCmd.h"
