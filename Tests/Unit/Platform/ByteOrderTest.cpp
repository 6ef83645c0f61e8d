#include "ByteOrder.h"

#include <gtest/gtest.h>

#include <cstring>

TEST(ByteOrder, WritesTheHighByteFirst)
{
    unsigned char bytes[6] = {};
    PutBE16(bytes, 0x8182);
    PutBE32(bytes + 2, 0x91929394);
    EXPECT_EQ(0, std::memcmp("\x81\x82\x91\x92\x93\x94", bytes, 6));
}

TEST(ByteOrder, ReadsTheHighByteFirst)
{
    const unsigned char bytes[] = {0x81, 0x82, 0x91, 0x92, 0x93, 0x94};
    EXPECT_EQ(0x8182, GetBE16(bytes));
    EXPECT_EQ(0x91929394u, GetBE32(bytes + 2));
    EXPECT_EQ(0x82919293u, GetBE32(bytes + 1)); // at any alignment
}
