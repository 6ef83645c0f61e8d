// PFDirectory.h: directories. All operations are static; any thread.
#pragma once

class CPFDirectory
{
public:
    CPFDirectory() = default;
    ~CPFDirectory() = default;

    static bool DirectoryExist(const char* path);
    /// One level, with mode 0777 less the process's mask. @return false when it exists or cannot be made
    static bool CreateDirectory(const char* path);
    /// @return false when it is not empty or not there
    static bool RemoveDirectory(const char* path);
};
