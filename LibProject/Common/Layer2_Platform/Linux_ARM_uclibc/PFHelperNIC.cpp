#include "PFHelper.h"

#include "NICEnumeration.h"

int CPFHelper::GetNICList(std::list<__TNICInfo>& list)
{
    return FindNICs(SYSTEM_NIC_SOURCES, list);
}

int CPFHelper::GetSocketEnabled_NICList(std::list<__TNICInfo>& list)
{
    return FindSocketEnabledNICs(SYSTEM_NIC_SOURCES, list);
}
