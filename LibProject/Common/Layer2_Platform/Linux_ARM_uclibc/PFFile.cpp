#include "PFFile.h"

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

const mode_t CREATION_MODE = 0777;

struct CreationRow
{
    unsigned int flag;
    int openFlags;
};

// The last match wins.
const CreationRow CREATION[] = {
    {CPFFile::OPEN_NEW, O_CREAT | O_EXCL}, {CPFFile::OPEN_CREATE, O_CREAT | O_TRUNC}, {CPFFile::OPEN_EXISTING, 0},
    {CPFFile::OPEN_ALWAYS, O_CREAT},       {CPFFile::OPEN_TRUNCATE, O_TRUNC},
};

int OpenFlags(unsigned int flags)
{
    int access = O_RDONLY;
    if ((flags & CPFFile::ACCESS_READ_WRITE) == CPFFile::ACCESS_READ_WRITE)
    {
        access = O_RDWR;
    }
    else if ((flags & CPFFile::ACCESS_WRITE) != 0)
    {
        access = O_WRONLY;
    }
    int creation = 0;
    for (const CreationRow& row : CREATION)
    {
        creation = (flags & row.flag) != 0 ? row.openFlags : creation;
    }
    const int direct = (flags & CPFFile::UNBUFFERED) != 0 ? O_DIRECT : 0;
    return access | creation | direct | O_LARGEFILE | O_CLOEXEC;
}

} // namespace

CPFFile::~CPFFile()
{
    CloseFile();
}

bool CPFFile::TakePath(const char* path, bool deleteOnClose)
{
    if (path == nullptr)
    {
        errno = EINVAL;
        return false;
    }
    const size_t length = std::strlen(path);
    if (deleteOnClose && length >= sizeof(m_path))
    {
        errno = ENAMETOOLONG; // a cut path would delete another file
        return false;
    }
    const size_t kept = length < sizeof(m_path) ? length : sizeof(m_path) - 1;
    std::memcpy(m_path, path, kept);
    m_path[kept] = '\0';
    m_deleteOnClose = deleteOnClose;
    return true;
}

bool CPFFile::OpenFile(const char* path, unsigned int flags)
{
    CloseFile();
    if (!TakePath(path, (flags & DELETE_ON_CLOSE) != 0))
    {
        return false;
    }
    m_openedForWriting = (flags & ACCESS_WRITE) != 0;
    m_fd = open(path, OpenFlags(flags), CREATION_MODE);
    return m_fd != -1;
}

void CPFFile::CloseFile()
{
    if (m_fd == -1)
    {
        return;
    }
    if (m_openedForWriting && !m_deleteOnClose)
    {
        fsync(m_fd);
    }
    close(m_fd);
    m_fd = -1;
    if (m_deleteOnClose)
    {
        unlink(m_path);
    }
}

bool CPFFile::Read(void* data, unsigned int size, unsigned int& done)
{
    done = 0;
    const ssize_t count = m_fd == -1 ? -1 : read(m_fd, data, size);
    if (count < 0)
    {
        return false;
    }
    done = static_cast<unsigned int>(count);
    return true;
}

bool CPFFile::Write(const void* data, unsigned int size)
{
    return m_fd != -1 && write(m_fd, data, size) >= 0;
}

long long CPFFile::GetSize()
{
    if (m_fd == -1)
    {
        return 0;
    }
    const off_t position = lseek(m_fd, 0, SEEK_CUR);
    const off_t size = lseek(m_fd, 0, SEEK_END);
    lseek(m_fd, position, SEEK_SET);
    return size;
}

long long CPFFile::Seek(long long offset, SEEKMODE mode)
{
    static const int WHENCE[] = {SEEK_SET, SEEK_CUR, SEEK_END};
    if (m_fd == -1 || mode < SEEK_FROM_BEGIN || mode > SEEK_FROM_END)
    {
        return -1;
    }
    return lseek(m_fd, static_cast<off_t>(offset), WHENCE[mode]);
}

long long CPFFile::SeekToEnd()
{
    return Seek(0, SEEK_FROM_END);
}

long long CPFFile::SeekToBegin()
{
    return Seek(0, SEEK_FROM_BEGIN);
}

bool CPFFile::SetFilePointer(long long offset, unsigned long long* position, SEEKMODE mode)
{
    const long long reached = Seek(offset, mode);
    if (reached < 0)
    {
        return false;
    }
    if (position != nullptr)
    {
        *position = static_cast<unsigned long long>(reached);
    }
    return true;
}

bool CPFFile::IsOpened() const
{
    return m_fd != -1;
}

bool CPFFile::FileExist(const char* path)
{
    struct stat status = {};
    if (path == nullptr || lstat(path, &status) != 0)
    {
        return false;
    }
    return !S_ISDIR(status.st_mode) && !S_ISLNK(status.st_mode) && !S_ISSOCK(status.st_mode);
}

bool CPFFile::deleteFile(const char* path)
{
    return unlink(path) == 0;
}
