#include "PFDirectory.h"

#include "TempDirectory.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

TEST(PFDirectory, IsCreatedAndRemoved)
{
    const CTempDirectory directory;
    const std::string path = directory.Path("d");
    EXPECT_FALSE(CPFDirectory::DirectoryExist(path.c_str()));
    EXPECT_TRUE(CPFDirectory::CreateDirectory(path.c_str()));
    EXPECT_TRUE(CPFDirectory::DirectoryExist(path.c_str()));
    EXPECT_FALSE(CPFDirectory::CreateDirectory(path.c_str()));
    EXPECT_TRUE(CPFDirectory::RemoveDirectory(path.c_str()));
    EXPECT_FALSE(CPFDirectory::RemoveDirectory(path.c_str()));
}

TEST(PFDirectory, NewOneHasEveryRightThatTheMaskLeaves)
{
    const CTempDirectory directory;
    const mode_t before = umask(0);
    EXPECT_TRUE(CPFDirectory::CreateDirectory(directory.Path("d").c_str()));
    umask(before);
    struct stat status = {};
    ASSERT_EQ(0, stat(directory.Path("d").c_str(), &status));
    EXPECT_EQ(0777u, status.st_mode & 07777u);
}

TEST(PFDirectory, FileIsNone)
{
    const CTempDirectory directory;
    EXPECT_FALSE(CPFDirectory::DirectoryExist(directory.Write("f", "").c_str()));
}

TEST(PFDirectory, IsMadeOneLevelAtATimeAndRemovedWhenEmpty)
{
    const CTempDirectory directory;
    EXPECT_FALSE(CPFDirectory::CreateDirectory(directory.Path("a/b").c_str()));
    directory.Write("f", "");
    EXPECT_FALSE(CPFDirectory::RemoveDirectory(directory.Path().c_str()));
}
