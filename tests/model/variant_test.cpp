#include "model/variant.h"

#include <gtest/gtest.h>

#include "model/vocabulary.h"

using QB::QBVariant;

TEST(Variant, ATextCopyDoesNotShareItsPayload) {
    const QBVariant original(std::string("kept"));
    {
        QBVariant copy(original);
        copy.setString("changed");
    }
    EXPECT_EQ(original.toString(), "kept");
    EXPECT_EQ(original.type(), QBVariant::TypeString);
}

TEST(Variant, AnIntegerOverATextFreesTheText) {
    QBVariant variant(std::string(100, 'x'));  // the leak check sees a text that is not freed
    variant.setInt(7);
    EXPECT_EQ(variant.toInt(), 7);
    variant = QBVariant(std::string(100, 'y'));
    variant = QBVariant(2.5);
    EXPECT_EQ(variant.type(), QBVariant::TypeDouble);
    EXPECT_EQ(variant.toDouble(), 2.5);
}

TEST(Variant, SelfAssignmentAndItsOwnTextAreSafe) {
    QBVariant variant(std::string(100, 'z'));
    const QBVariant& same = variant;
    variant = same;
    variant.setString(variant.toString());
    EXPECT_EQ(variant.toString(), std::string(100, 'z'));
}

TEST(Variant, EveryKindKeepsTagAndPayload) {
    int target = 0;
    EXPECT_TRUE(QBVariant().isEmpty());
    EXPECT_EQ(QBVariant(static_cast<void*>(&target)).toPointer(), &target);
    EXPECT_EQ(QBVariant(static_cast<void*>(&target)).type(), 5);
    EXPECT_EQ(QBVariant(1.5F).type(), 3);
    EXPECT_FALSE(QBVariant(0).isEmpty());
}

TEST(Vocabulary, DialectsAndJoinWordsEndWhereTheirTablesEnd) {
    EXPECT_EQ(QB::parserDialect(QB::DatabaseTypeMariaDB), 1);
    EXPECT_THROW(QB::parserDialect(QB::DatabaseTypeReserved), std::runtime_error);
    EXPECT_THROW(QB::parserDialect(QB::DatabaseTypeMongoDB), std::runtime_error);
    EXPECT_EQ(QB::joinTypeText(QB::SQLJoinTypeFullOuter), "FULL OUTER JOIN");
    EXPECT_EQ(QB::joinTypeText(static_cast<QB::SQLJoinType>(7)), "");
    EXPECT_EQ(QB::joinTypeText(static_cast<QB::SQLJoinType>(-1)), "");
    EXPECT_FALSE(QB::hasStatementModel(QB::DatabaseTypeNone));
    EXPECT_TRUE(QB::hasStatementModel(QB::DatabaseTypeMariaDB));
    EXPECT_FALSE(QB::hasStatementModel(QB::DatabaseTypeMongoDB));
}
