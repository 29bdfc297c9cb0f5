#include "model/variant.h"

#include <gtest/gtest.h>

#include "model/vocabulary.h"

using QB::QBVariant;

TEST(Variant, TextsAreCopiedReplacedAndFreed) {  // the leak and address checks see the rest
    const QBVariant original(std::string(100, 'x'));
    QBVariant copy(original);
    copy.setString(copy.toString());
    copy = static_cast<const QBVariant&>(copy);
    EXPECT_EQ(copy.toString(), original.toString());
    copy.setString("changed");
    EXPECT_EQ(original.toString(), std::string(100, 'x'));
    copy = QBVariant(2.5);
    EXPECT_EQ(copy.type(), QBVariant::TypeDouble);
    EXPECT_EQ(copy.toDouble(), 2.5);
    copy = original;
    copy.setInt(7);
    EXPECT_EQ(copy.toInt(), 7);
}

TEST(Vocabulary, DialectsAndJoinWordsEndWhereTheirTablesEnd) {
    EXPECT_EQ(QB::parserDialect(QB::DatabaseTypeMariaDB), 1);
    for (const auto type : {QB::DatabaseTypeReserved, QB::DatabaseTypeMongoDB})
        EXPECT_THROW(QB::parserDialect(type), std::runtime_error);
    EXPECT_EQ(QB::joinTypeText(QB::SQLJoinTypeFullOuter), "FULL OUTER JOIN");
    for (const int type : {7, -1})
        EXPECT_EQ(QB::joinTypeText(static_cast<QB::SQLJoinType>(type)), "");
}
