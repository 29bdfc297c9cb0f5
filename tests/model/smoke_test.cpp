#include <gtest/gtest.h>

#include "model/dump.h"
#include "model/element_expressions.h"

TEST(Model, ANewStatementIsEmpty) {
    QB::Component::SQL::SQLSelectStmtComponent statement;
    EXPECT_EQ(QB::dumpStatement(&statement), "statement\n  select\n");
}
