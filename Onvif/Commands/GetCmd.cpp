#include "GetCmd.h"

CGetDefaultCmd& CGetDefaultCmd::Instance()
{
    static CGetDefaultCmd instance;
    return instance;
}
