// ConnectionTableTest.cpp: handles and their generations.
#include "ConnectionTable.h"

#include <set>

#include <gtest/gtest.h>

namespace
{

std::shared_ptr<CConnection> Closed()
{
    return std::make_shared<CConnection>(nullptr, static_cast<unsigned short>(0), std::make_shared<CQuitSignal>());
}

TEST(ConnectionTable, HandlesArePositiveAndFindTheirConnection)
{
    CConnectionTable table;
    const auto first = Closed();
    const auto second = Closed();
    const int firstHandle = table.Insert(first);
    const int secondHandle = table.Insert(second);
    EXPECT_GT(firstHandle, 0);
    EXPECT_GT(secondHandle, 0);
    EXPECT_EQ(first, table.Find(firstHandle));
    EXPECT_EQ(second, table.Find(secondHandle));
    EXPECT_EQ(firstHandle, first->Handle());
}

TEST(ConnectionTable, UnknownHandlesFindNothing)
{
    CConnectionTable table;
    const int handle = table.Insert(Closed());
    for (const int unknown : {0, -1, 1, handle + 1, handle + 4096, -handle, 0x7FFFFFFF, static_cast<int>(0x80000000)})
    {
        EXPECT_EQ(nullptr, table.Find(unknown)) << unknown;
        EXPECT_EQ(nullptr, table.Take(unknown)) << unknown;
    }
}

TEST(ConnectionTable, TakenHandleIsStaleWhenItsSlotIsUsedAgain)
{
    CConnectionTable table;
    const auto connection = Closed();
    std::set<int> used;
    for (unsigned int i = 0; i < 3 * CConnectionTable::SLOTS; ++i)
    {
        const int handle = table.Insert(connection);
        EXPECT_TRUE(used.insert(handle).second) << handle;
        EXPECT_EQ(connection, table.Take(handle));
        EXPECT_EQ(nullptr, table.Find(handle));
    }
    for (const int stale : used)
    {
        EXPECT_EQ(nullptr, table.Find(stale));
    }
}

TEST(ConnectionTable, FullTableGivesZeroUntilASlotIsFree)
{
    CConnectionTable table;
    const auto connection = Closed();
    int last = 0;
    for (unsigned int i = 0; i < CConnectionTable::SLOTS; ++i)
    {
        last = table.Insert(connection);
        ASSERT_GT(last, 0);
    }
    EXPECT_EQ(0, table.Insert(connection));
    table.Take(last);
    const int reused = table.Insert(connection);
    EXPECT_GT(reused, 0);
    EXPECT_NE(last, reused);
    EXPECT_EQ(CConnectionTable::SLOTS, table.TakeAll().size());
    EXPECT_EQ(nullptr, table.Find(reused));
}

// A slot that alone is free wears out first: its generations come again, and never make the handle 0.
TEST(ConnectionTable, GenerationsComeRoundWithoutZero)
{
    CConnectionTable table;
    const auto connection = Closed();
    for (unsigned int i = 0; i + 1 < CConnectionTable::SLOTS; ++i)
    {
        table.Insert(connection);
    }
    const int first = table.Insert(connection);
    table.Take(first);
    int uses = 1;
    for (int handle = table.Insert(connection); handle != first; handle = table.Insert(connection))
    {
        ASSERT_GT(handle, 0);
        table.Take(handle);
        ++uses;
    }
    EXPECT_EQ(524287, uses);
}

} // namespace
