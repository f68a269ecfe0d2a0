#include "TextFunctions.h"

#include <gtest/gtest.h>

using namespace vmk;

TEST(IsBlank, CountsNbspEntitiesOnlyWhenAsked)
{
    EXPECT_FALSE(IsBlank("&nbsp;", false));
    EXPECT_TRUE(IsBlank("&nbsp; \t\r\n\xa0", true));
}
