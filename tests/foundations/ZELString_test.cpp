#include "ZELString.h"

#include <gtest/gtest.h>

TEST(ZELString, Smoke) {
    EXPECT_EQ(ZELString("a") + "b", "ab");
}
