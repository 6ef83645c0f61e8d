// PFFile.h: a file by its descriptor. An object belongs to one thread at a time.
#pragma once

class CPFFile
{
public:
    /// Flags of OpenFile. The low two bits select the access; of the bits from OPEN_NEW to OPEN_TRUNCATE the highest
    /// that is set counts.
    enum : unsigned int
    {
        ACCESS_READ = 1,
        ACCESS_WRITE = 2,
        ACCESS_READ_WRITE = 3,
        OPEN_NEW = 0x20,    ///< creates the file, fails when it exists
        OPEN_CREATE = 0x40, ///< creates or empties it
        OPEN_EXISTING = 0x80,
        OPEN_ALWAYS = 0x100,   ///< creates it when missing
        OPEN_TRUNCATE = 0x200, ///< empties it
        DELETE_ON_CLOSE = 0x400,
        UNBUFFERED = 0x800, ///< O_DIRECT
    };

    enum SEEKMODE
    {
        SEEK_FROM_BEGIN = 0,
        SEEK_FROM_CURRENT = 1,
        SEEK_FROM_END = 2,
    };

    CPFFile() = default;
    /// Closes the file.
    ~CPFFile();
    CPFFile(const CPFFile&) = delete;
    CPFFile& operator=(const CPFFile&) = delete;

    /// A file that is open is closed first. A file to be deleted on close has a path below 256 bytes.
    bool OpenFile(const char* path, unsigned int flags);
    /// Brings what was written to the disk, closes, and deletes a file that was opened so.
    void CloseFile();

    /// One read or write, which may be shorter than asked for. @return false on an error or when closed
    bool Read(void* data, unsigned int size, unsigned int& done);
    bool Write(const void* data, unsigned int size);

    /// Bytes in the file; 0 when closed, -1 on an error.
    long long GetSize();

    /// @return the new position, -1 on an error or when closed
    long long Seek(long long offset, SEEKMODE mode);
    long long SeekToEnd();
    long long SeekToBegin();
    /// @param position  may be null; receives the new position. @return false on an error or when closed
    bool SetFilePointer(long long offset, unsigned long long* position, SEEKMODE mode);

    bool IsOpened() const;

    /// The path exists and is neither a directory, a symbolic link nor a socket.
    static bool FileExist(const char* path);
    static bool deleteFile(const char* path);

private:
    bool TakePath(const char* path, bool deleteOnClose);

    int m_fd = -1;
    bool m_deleteOnClose = false;
    char m_path[256] = {};
    bool m_openedForWriting = false;
};
