// PFHelper.h: clock, threads, process and network interfaces of the platform. All operations are static; any thread.
//
// The sources are split by topic: PFHelper.cpp (clock, threads, process), PFHelperNIC.cpp (network interfaces),
// PFHelperSystemCall.cpp (requests to the helper process).
#pragma once

#include <cstdint>
#include <list>
#include <string>

/// Sixteen random bytes, in the fields of a GUID.
struct _GUID // NOLINT(bugprone-reserved-identifier)
{
    std::uint32_t Data1;
    std::uint16_t Data2;
    std::uint16_t Data3;
    std::uint8_t Data4[8];
};

class CPFHelper
{
public:
    enum NIC_STATE : std::uint32_t
    {
        NIC_NOT_RUNNING = 0,
        NIC_RUNNING = 1,
        NIC_UNKNOWN = 2, ///< its flags could not be read
    };

    /// One network interface. Addresses are in network order, 0 when there is none.
    struct __TNICInfo // NOLINT(bugprone-reserved-identifier)
    {
        std::uint32_t state; ///< NIC_STATE
        char name[48];
        std::uint32_t IP;
        std::uint32_t mask;
        std::uint32_t gateway;
        std::uint8_t MAC[6];
        bool master; ///< a bond
        bool slave;  ///< belongs to a bond
    };

    /// Milliseconds of the monotonic clock in 32 bits; never 0, which stands for "no tick". It wraps after 49.7 days:
    /// compare unsigned differences.
    static unsigned int GetTickCount();
    /// Replaces the clock behind GetTickCount. For tests. @param source  null restores the monotonic clock
    static void ReplaceTickCount(unsigned int (*source)());

    /// Sleeps for the whole time, also when signals come in between.
    static void Sleep(unsigned int ms);

    static int GetCPUCount();
    static unsigned int GetPageSize();

    /// Starts a thread. @param id  receives the id that GetThreadID returns on the new thread
    /// @return the same id; 0 on failure, with errno set
    static unsigned int CreateThread(void* (*function)(void*), void* argument, unsigned int* id);
    /// Waits for the end of a thread of CreateThread; does nothing for an unknown id. Sets `id` to 0.
    static void DestroyThread(unsigned int& id);
    /// Lets a thread of CreateThread end by itself; does nothing for an unknown id. Sets `id` to 0.
    static void DetachThread(unsigned int& id);
    /// Binds a thread of CreateThread to one processor. @return false for an unknown id or processor
    static bool AttachThreadToCPU(unsigned int id, int cpu);
    /// Names the calling thread (the kernel keeps 15 bytes) and prints one line with the name and its kernel id.
    /// @param file, line  the caller's place, printed with it
    static void SetCurrentThreadName(const char* name, const char* file, int line);
    /// The calling thread's kernel id, which SHARESDK_GetThreadID also returns.
    static unsigned int GetThreadID();

    static void CreateGUID(_GUID& guid);

    static void SetLastError(unsigned int error);
    static unsigned int GetLastError();

    /// The path of the running program.
    /// @param reserved  not looked at
    /// @param buffer    receives the path, with a zero byte behind it when it is shorter than `size`
    /// @return bytes written without the zero byte, 0 on failure
    static unsigned int GetModuleFileName(unsigned int reserved, char* buffer, unsigned int size);

    /// The names of a directory's entries without "." and "..". @return false when it cannot be opened
    static bool GetFileList(const char* directory, std::list<std::string>& names);
    static void Sync();

    /// Page-aligned memory. @param address  null @param type  0x1000 @param protect  not looked at
    /// @return null on failure
    static void* VirtualAlloc(void* address, unsigned int size, unsigned int type, unsigned int protect);
    /// @param size  0 @param type  0x8000
    static void VirtualFree(void* address, unsigned int size, unsigned int type);

    /// The Ethernet and bond interfaces, by name. @return how many
    static int GetNICList(std::list<__TNICInfo>& list);
    /// Those of GetNICList that run and do not belong to a bond, in the same order. @return how many
    static int GetSocketEnabled_NICList(std::list<__TNICInfo>& list);

    /// The address that the system would send from towards another one. Nothing is sent.
    /// @param address  network order. @return network order; 0 when there is no route
    static unsigned int GetLocalAddressTowards(unsigned int address);

    /// Has a command run by the helper process outside this library. Waits for the helper without a limit.
    /// @param szCmd   below 256 characters
    /// @param flag    handed to the helper
    /// @param result  receives the helper's value when it answered
    /// @return whether the helper answered with status 0
    static bool SystemCall(const char* szCmd, bool flag, int& result);

    CPFHelper() = delete;
};
