#include "PFDirectory.h"

#include "TempDirectory.h"

#include <gtest/gtest.h>

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
