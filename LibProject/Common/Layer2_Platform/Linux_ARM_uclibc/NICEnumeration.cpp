#include "NICEnumeration.h"

#include "PFAssert.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

#include <net/if.h>
#include <net/route.h>
#include <netinet/in.h>
#include <strings.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace
{

using NICInfo = CPFHelper::__TNICInfo;
using File = std::unique_ptr<FILE, int (*)(FILE*)>;

const int DEVICES_HEADER_LINES = 2;

int Control(int socket, unsigned long request, ifreq* interface)
{
    return ioctl(socket, request, interface);
}

File OpenText(const char* path)
{
    return File(std::fopen(path, "re"), &std::fclose);
}

bool IsSpace(char c)
{
    return std::isspace(static_cast<unsigned char>(c)) != 0;
}

bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

// Only wired interfaces and bonds of them count: no loopback, wireless or tunnel.
bool IsWired(const std::string& name)
{
    return strncasecmp(name.c_str(), "eth", 3) == 0 || strncasecmp(name.c_str(), "bond", 4) == 0;
}

bool IsListed(const std::list<NICInfo>& list, const std::string& name)
{
    for (const NICInfo& info : list)
    {
        if (name == info.name)
        {
            return true;
        }
    }
    return false;
}

// One question about one interface. @return false when the kernel does not answer it
bool Ask(const NIC_SOURCES& sources, int socket, unsigned long request, const char* name, ifreq& answer)
{
    answer = ifreq();
    std::memcpy(answer.ifr_name, name, std::min(std::strlen(name), sizeof(answer.ifr_name) - 1));
    return sources.control(socket, request, &answer) == 0;
}

std::uint32_t AddressOf(const sockaddr& address)
{
    sockaddr_in internet = {};
    std::memcpy(&internet, &address, sizeof(internet));
    return internet.sin_addr.s_addr;
}

void FillMAC(const NIC_SOURCES& sources, int socket, NICInfo& info)
{
    if (!info.master && get_MAC_from_rules(sources.rules, info.name, info.MAC))
    {
        return;
    }
    ifreq answer;
    if (Ask(sources, socket, SIOCGIFHWADDR, info.name, answer))
    {
        std::memcpy(info.MAC, answer.ifr_hwaddr.sa_data, sizeof(info.MAC));
    }
}

NICInfo Describe(const NIC_SOURCES& sources, int socket, const std::string& name)
{
    NICInfo info = {};
    std::snprintf(info.name, sizeof(info.name), "%s", name.c_str());

    ifreq answer;
    info.state = CPFHelper::NIC_UNKNOWN;
    if (Ask(sources, socket, SIOCGIFFLAGS, info.name, answer))
    {
        const unsigned int flags = static_cast<unsigned short>(answer.ifr_flags);
        info.state = (flags & IFF_RUNNING) != 0 ? CPFHelper::NIC_RUNNING : CPFHelper::NIC_NOT_RUNNING;
        info.master = (flags & IFF_MASTER) != 0;
        info.slave = (flags & IFF_SLAVE) != 0;
    }
    if (Ask(sources, socket, SIOCGIFADDR, info.name, answer))
    {
        info.IP = AddressOf(answer.ifr_addr);
    }
    if (Ask(sources, socket, SIOCGIFNETMASK, info.name, answer))
    {
        info.mask = AddressOf(answer.ifr_netmask);
    }
    Get_NIC_Gateway(sources.routes, &info.gateway, nullptr, nullptr, info.name);
    FillMAC(sources, socket, info);
    return info;
}

} // namespace

const NIC_SOURCES SYSTEM_NIC_SOURCES = {"/proc/net/dev", "/proc/net/route", "/etc/udev/rules.d/70-persistent-net.rules",
                                        &Control};

std::string ParseInterfaceName(const char* line)
{
    while (IsSpace(*line))
    {
        ++line;
    }
    const char* end = line;
    while (*end != '\0' && *end != ':' && !IsSpace(*end))
    {
        ++end;
    }
    if (*end == ':')
    {
        // "eth0:1:" names an alias; "eth0:1234" is a name with its first counter behind it.
        const char* digits = end + 1;
        while (IsDigit(*digits))
        {
            ++digits;
        }
        if (digits != end + 1 && *digits == ':')
        {
            end = digits;
        }
    }
    return std::string(line, end);
}

int FindNICs(const NIC_SOURCES& sources, std::list<CPFHelper::__TNICInfo>& list)
{
    list.clear();
    const int socket = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (socket < 0)
    {
        return 0;
    }
    const File devices = OpenText(sources.devices);
    char line[512];
    for (int number = 0; devices && std::fgets(line, sizeof(line), devices.get()) != nullptr; ++number)
    {
        const std::string name = number < DEVICES_HEADER_LINES ? std::string() : ParseInterfaceName(line);
        if (IsWired(name) && !IsListed(list, name))
        {
            list.push_back(Describe(sources, socket, name));
        }
    }
    close(socket);
    return static_cast<int>(list.size());
}

int FindSocketEnabledNICs(const NIC_SOURCES& sources, std::list<CPFHelper::__TNICInfo>& list)
{
    FindNICs(sources, list);
    list.remove_if([](const NICInfo& info) { return info.state != CPFHelper::NIC_RUNNING || info.slave; });
    return static_cast<int>(list.size());
}

bool Get_NIC_Gateway(const char* routes, unsigned int* gateway, unsigned int* destination, unsigned int* mask,
                     const char* nic)
{
    PF_ASSERT(gateway != nullptr);
    const File file = OpenText(routes);
    char line[200];
    while (file && std::fgets(line, sizeof(line), file.get()) != nullptr)
    {
        unsigned int fields[4] = {}; // destination, gateway, flags, mask
        // NOLINTNEXTLINE(cert-err34-c): clients rely on how the C library reads numbers
        const int count = std::sscanf(line, "%*s %x %x %x %*x %*x %*x %x %*x %*x %*x\n", &fields[0], &fields[1],
                                      &fields[2], &fields[3]);
        // Any line that holds the name counts: "eth1" also finds a route of "eth10".
        if (count != 4 || std::strstr(line, nic) == nullptr || (fields[2] & RTF_GATEWAY) == 0)
        {
            continue;
        }
        *gateway = fields[1];
        if (destination != nullptr)
        {
            *destination = fields[0];
        }
        if (mask != nullptr)
        {
            *mask = fields[3];
        }
        return true;
    }
    return false;
}

bool get_MAC_from_rules(const char* rules, const char* nic, unsigned char* mac)
{
    const File file = OpenText(rules);
    const std::string name = std::string("NAME=\"") + nic + "\"";
    const char ADDRESS[] = "ATTR{address}==\"";
    const size_t ADDRESS_LENGTH = 17; // six pairs of digits with a character between them

    char line[1024];
    while (file && std::fgets(line, sizeof(line), file.get()) != nullptr)
    {
        if (line[0] == '#' || std::strstr(line, name.c_str()) == nullptr)
        {
            continue;
        }
        const char* address = std::strstr(line, ADDRESS);
        if (address == nullptr || std::strlen(address + std::strlen(ADDRESS)) < ADDRESS_LENGTH)
        {
            return false;
        }
        address += std::strlen(ADDRESS);
        for (size_t i = 0; i < 6; ++i)
        {
            const char pair[3] = {address[i * 3], address[i * 3 + 1], '\0'};
            mac[i] = static_cast<unsigned char>(std::strtol(pair, nullptr, 16));
        }
        return true;
    }
    return false;
}
