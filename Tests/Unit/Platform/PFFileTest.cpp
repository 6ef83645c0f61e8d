#include "PFFile.h"

#include "TempDirectory.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <string>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace
{

/// Lets new files have every right while it lives.
class COpenMask
{
public:
    COpenMask() : m_before(umask(0)) {}
    ~COpenMask() { umask(m_before); }
    COpenMask(const COpenMask&) = delete;
    COpenMask& operator=(const COpenMask&) = delete;

private:
    const mode_t m_before;
};

/// The number that the next descriptor gets.
int NextDescriptor()
{
    const int next = open("/dev/null", O_RDONLY | O_CLOEXEC);
    close(next);
    return next;
}

std::string ReadAll(CPFFile& file)
{
    char bytes[64] = {};
    unsigned int done = 99;
    EXPECT_TRUE(file.Read(bytes, sizeof(bytes), done));
    return std::string(bytes, done);
}

// What one set of flags does to a file that is there, and to one that is not.
struct CreationCase
{
    const char* name;
    unsigned int flags;
    bool opensExisting;
    bool emptiesExisting;
    bool createsMissing;
};

const CreationCase CREATION_CASES[] = {
    {"None", 0x003, true, false, false},
    {"New", 0x023, false, false, true},
    {"Create", 0x043, true, true, true},
    {"Existing", 0x083, true, false, false},
    {"Always", 0x103, true, false, true},
    {"Truncate", 0x203, true, true, false},
    {"AlwaysBeatsNew", 0x123, true, false, true},
    {"ExistingBeatsCreate", 0x0C3, true, false, false},
    {"TruncateBeatsAlways", 0x303, true, true, false},
};

class PFFileCreation : public testing::TestWithParam<CreationCase>
{
};

} // namespace

TEST_P(PFFileCreation, OpensEmptiesAndCreates)
{
    const CTempDirectory directory;
    const std::string existing = directory.Write("existing", "text");
    const std::string missing = directory.Path("missing");
    CPFFile file;
    EXPECT_EQ(GetParam().opensExisting, file.OpenFile(existing.c_str(), GetParam().flags));
    file.CloseFile();
    EXPECT_EQ(GetParam().emptiesExisting ? "" : "text", directory.Read("existing"));
    EXPECT_EQ(GetParam().createsMissing, file.OpenFile(missing.c_str(), GetParam().flags));
    EXPECT_EQ(GetParam().createsMissing, file.IsOpened());
    file.CloseFile();
    EXPECT_EQ(GetParam().createsMissing, CPFFile::FileExist(missing.c_str()));
}

INSTANTIATE_TEST_SUITE_P(PFFile, PFFileCreation, testing::ValuesIn(CREATION_CASES),
                         [](const auto& row) { return row.param.name; });

TEST(PFFile, AccessOfOneOrNoneIsForReading)
{
    const CTempDirectory directory;
    const std::string path = directory.Write("f", "text");
    for (const unsigned int access : {0u, 1u})
    {
        CPFFile file;
        ASSERT_TRUE(file.OpenFile(path.c_str(), access));
        EXPECT_EQ("text", ReadAll(file));
        EXPECT_FALSE(file.Write("x", 1));
    }
}

TEST(PFFile, AccessOfTwoIsForWriting)
{
    const CTempDirectory directory;
    const std::string path = directory.Write("f", "text");
    CPFFile file;
    ASSERT_TRUE(file.OpenFile(path.c_str(), 2));
    EXPECT_TRUE(file.Write("TE", 2));
    char byte = 0;
    unsigned int done = 9;
    EXPECT_FALSE(file.Read(&byte, 1, done));
    EXPECT_EQ(0u, done);
    file.CloseFile();
    EXPECT_EQ("TExt", directory.Read("f"));
}

TEST(PFFile, AccessOfThreeIsForBoth)
{
    const CTempDirectory directory;
    const std::string path = directory.Write("f", "text");
    CPFFile file;
    ASSERT_TRUE(file.OpenFile(path.c_str(), 3));
    EXPECT_TRUE(file.Write("T", 1));
    EXPECT_EQ("ext", ReadAll(file));
}

// The mode in which the web server opens the files of a site.
TEST(PFFile, Mode257ReadsAndMakesAMissingFile)
{
    const CTempDirectory directory;
    CPFFile file;
    EXPECT_TRUE(file.OpenFile(directory.Path("missing").c_str(), 257));
    EXPECT_EQ(0, file.GetSize());
}

TEST(PFFile, NewFileHasEveryRightThatTheMaskLeaves)
{
    const CTempDirectory directory;
    const COpenMask mask;
    CPFFile file;
    ASSERT_TRUE(file.OpenFile(directory.Path("f").c_str(), 0x42));
    struct stat status = {};
    ASSERT_EQ(0, stat(directory.Path("f").c_str(), &status));
    EXPECT_EQ(0777u, status.st_mode & 07777u);
}

// Some file systems refuse it, and say so.
TEST(PFFile, UnbufferedFileIsReadWithoutTheSystemsCache)
{
    const CTempDirectory directory;
    const std::string path = directory.Write("f", "text");
    CPFFile file;
    for (const unsigned int flags : {0x001u, 0x801u})
    {
        const int descriptor = NextDescriptor();
        errno = 0;
        const bool isOpen = file.OpenFile(path.c_str(), flags);
        const bool isDirect = isOpen ? (fcntl(descriptor, F_GETFL) & O_DIRECT) != 0 : errno == EINVAL;
        EXPECT_EQ(flags == 0x801, isDirect) << flags;
        file.CloseFile();
    }
}

TEST(PFFile, DeletesOnClose)
{
    const CTempDirectory directory;
    const std::string path = directory.Path("f");
    CPFFile file;
    ASSERT_TRUE(file.OpenFile(path.c_str(), 0x543));
    EXPECT_TRUE(CPFFile::FileExist(path.c_str()));
    file.CloseFile();
    EXPECT_FALSE(CPFFile::FileExist(path.c_str()));
}

TEST(PFFile, PathToBeDeletedHasUpTo255Characters)
{
    const CTempDirectory directory;
    const std::string folder = directory.Path(std::string(150, 'd'));
    ASSERT_EQ(0, mkdir(folder.c_str(), 0700));
    const std::string fits = folder + "/" + std::string(255 - folder.size() - 1, 'f');
    const std::string longer = fits + "f";
    ASSERT_EQ(255u, fits.size());
    CPFFile file;
    EXPECT_TRUE(file.OpenFile(fits.c_str(), 0x543));
    file.CloseFile();
    EXPECT_FALSE(CPFFile::FileExist(fits.c_str()));
    EXPECT_FALSE(file.OpenFile(longer.c_str(), 0x543));
    EXPECT_FALSE(CPFFile::FileExist(longer.c_str()));
    EXPECT_TRUE(file.OpenFile(longer.c_str(), 0x143));
}

TEST(PFFile, ClosedFileDoesNothing)
{
    CPFFile file;
    char byte = 0;
    unsigned int done = 9;
    unsigned long long position = 9;
    EXPECT_FALSE(file.IsOpened());
    EXPECT_FALSE(file.Read(&byte, 1, done));
    EXPECT_FALSE(file.Write(&byte, 1));
    EXPECT_EQ(0, file.GetSize());
    EXPECT_EQ(-1, file.Seek(0, CPFFile::SEEK_FROM_BEGIN));
    EXPECT_FALSE(file.SetFilePointer(0, &position, CPFFile::SEEK_FROM_BEGIN));
    EXPECT_EQ(9u, position);
    file.CloseFile();
    EXPECT_FALSE(file.OpenFile(nullptr, 1));
}

TEST(PFFile, SeeksFromThreePlaces)
{
    const CTempDirectory directory;
    const std::string path = directory.Write("f", "0123456789");
    CPFFile file;
    ASSERT_TRUE(file.OpenFile(path.c_str(), 1));
    EXPECT_EQ(4, file.Seek(4, CPFFile::SEEK_FROM_BEGIN));
    EXPECT_EQ(6, file.Seek(2, CPFFile::SEEK_FROM_CURRENT));
    EXPECT_EQ(7, file.Seek(-3, CPFFile::SEEK_FROM_END));
    EXPECT_EQ("789", ReadAll(file));
    EXPECT_EQ(-1, file.Seek(-1, CPFFile::SEEK_FROM_BEGIN));
    EXPECT_EQ(-1, file.Seek(0, static_cast<CPFFile::SEEKMODE>(3)));
    EXPECT_EQ(0, file.SeekToBegin());
    EXPECT_EQ(10, file.SeekToEnd());
    unsigned long long position = 0;
    EXPECT_TRUE(file.SetFilePointer(3, &position, CPFFile::SEEK_FROM_BEGIN));
    EXPECT_EQ(3u, position);
    EXPECT_TRUE(file.SetFilePointer(3, nullptr, CPFFile::SEEK_FROM_BEGIN));
}

TEST(PFFile, SizeLeavesThePlace)
{
    const CTempDirectory directory;
    const std::string path = directory.Write("f", "0123456789");
    CPFFile file;
    ASSERT_TRUE(file.OpenFile(path.c_str(), 1));
    file.Seek(8, CPFFile::SEEK_FROM_BEGIN);
    EXPECT_EQ(10, file.GetSize());
    EXPECT_EQ("89", ReadAll(file));
}

// A 32-bit device has files as large as any other.
TEST(PFFile, ReachesBeyondFourGibibytes)
{
    const CTempDirectory directory;
    const std::string path = directory.Write("f", "");
    CPFFile file;
    ASSERT_TRUE(file.OpenFile(path.c_str(), 3));
    EXPECT_EQ(5368709120, file.Seek(5368709120, CPFFile::SEEK_FROM_BEGIN));
    EXPECT_TRUE(file.Write("end", 3));
    EXPECT_EQ(5368709123, file.GetSize());
    EXPECT_EQ(5368709120, file.Seek(-3, CPFFile::SEEK_FROM_END));
    EXPECT_EQ("end", ReadAll(file));
    EXPECT_TRUE(CPFFile::FileExist(path.c_str()));
}

TEST(PFFile, NeitherDirectoryLinkNorSocketExistsAsAFile)
{
    const CTempDirectory directory;
    const std::string path = directory.Write("f", "");
    const std::string link = directory.Path("link");
    ASSERT_EQ(0, symlink(path.c_str(), link.c_str()));
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    const std::string socketPath = directory.Path("s");
    socketPath.copy(address.sun_path, sizeof(address.sun_path) - 1);
    const int socket = ::socket(AF_UNIX, SOCK_STREAM, 0);
    ASSERT_EQ(0, bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof(address)));
    EXPECT_TRUE(CPFFile::FileExist(path.c_str()));
    EXPECT_FALSE(CPFFile::FileExist(directory.Path().c_str()));
    EXPECT_FALSE(CPFFile::FileExist(link.c_str()));
    EXPECT_FALSE(CPFFile::FileExist(socketPath.c_str()));
    EXPECT_FALSE(CPFFile::FileExist(directory.Path("missing").c_str()));
    EXPECT_FALSE(CPFFile::FileExist(nullptr));
    close(socket);
}

TEST(PFFile, DeletesAFile)
{
    const CTempDirectory directory;
    const std::string path = directory.Write("f", "");
    EXPECT_TRUE(CPFFile::deleteFile(path.c_str()));
    EXPECT_FALSE(CPFFile::deleteFile(path.c_str()));
}
