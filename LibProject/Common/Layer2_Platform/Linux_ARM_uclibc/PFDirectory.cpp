#include "PFDirectory.h"

#include <sys/stat.h>
#include <unistd.h>

bool CPFDirectory::DirectoryExist(const char* path)
{
    struct stat status = {};
    return stat(path, &status) == 0 && S_ISDIR(status.st_mode);
}

bool CPFDirectory::CreateDirectory(const char* path)
{
    return mkdir(path, 0777) == 0;
}

bool CPFDirectory::RemoveDirectory(const char* path)
{
    return rmdir(path) == 0;
}
