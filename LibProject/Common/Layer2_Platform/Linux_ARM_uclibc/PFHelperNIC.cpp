#include "PFHelper.h"

#include "NICEnumeration.h"

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

int CPFHelper::GetNICList(std::list<__TNICInfo>& list)
{
    return FindNICs(SYSTEM_NIC_SOURCES, list);
}

int CPFHelper::GetSocketEnabled_NICList(std::list<__TNICInfo>& list)
{
    return FindSocketEnabledNICs(SYSTEM_NIC_SOURCES, list);
}

unsigned int CPFHelper::GetLocalAddressTowards(unsigned int address)
{
    const int probe = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (probe == -1)
    {
        return 0;
    }
    // Connecting a datagram socket looks up the route and sends nothing; the port plays no part.
    sockaddr_in peer{};
    peer.sin_family = AF_INET;
    peer.sin_addr.s_addr = address;
    peer.sin_port = htons(9);
    sockaddr_in local{};
    socklen_t size = sizeof(local);
    const bool isKnown = connect(probe, reinterpret_cast<const sockaddr*>(&peer), sizeof(peer)) == 0 &&
                         getsockname(probe, reinterpret_cast<sockaddr*>(&local), &size) == 0;
    close(probe);
    return isKnown ? local.sin_addr.s_addr : 0;
}
