// NICEnumeration.h: how CPFHelper finds the network interfaces, with its sources given, so that tests can bring theirs.
// Any thread.
#pragma once

#include "PFHelper.h"

struct ifreq;

/// Where the facts about interfaces come from.
struct NIC_SOURCES
{
    const char* devices; ///< table of the interfaces: "/proc/net/dev"
    const char* routes;  ///< table of the routes: "/proc/net/route"
    const char* rules;   ///< names given by hardware address: the udev rules file
    int (*control)(int socket, unsigned long request, ifreq* interface); ///< ioctl
};

extern const NIC_SOURCES SYSTEM_NIC_SOURCES;

/// CPFHelper::GetNICList from the given sources.
int FindNICs(const NIC_SOURCES& sources, std::list<CPFHelper::__TNICInfo>& list);

/// CPFHelper::GetSocketEnabled_NICList from the given sources.
int FindSocketEnabledNICs(const NIC_SOURCES& sources, std::list<CPFHelper::__TNICInfo>& list);

/// Reads a line of "/proc/net/dev". @return the interface's name, with its alias number when it has one ("eth0:1")
std::string ParseInterfaceName(const char* line);

/// The gateway of an interface, from the first route through one whose line holds the interface's name.
/// @param gateway      network order
/// @param destination  may be null
/// @param mask         may be null
/// @return false when there is none
bool Get_NIC_Gateway(const char* routes, unsigned int* gateway, unsigned int* destination, unsigned int* mask,
                     const char* nic);

/// The hardware address that the rules file binds to an interface's name. @param mac  six bytes
/// @return false when it binds none
bool get_MAC_from_rules(const char* rules, const char* nic, unsigned char* mac);
