#include "engine/modification_check.h"

#include "recording_engine.h"
#include "support/text_check.h"

using namespace QB;
using namespace QB::Test;
using namespace QB::Component::SQL;

namespace {

template <typename T>
SQLFieldColumnComponent* columnOf(T* source) {
    auto* column = new SQLFieldColumnComponent;
    column->source = source;
    column->parentPath = {"film"};
    column->fieldName = "title";
    return column;
}

/// A join of film with a second table.
class ModificationTest : public StatementTest {
protected:
    ModificationTest() {
        auto* film = setTable("film");
        SourceNode* const join = new SourceNode;
        join->value = new SQLJoinSourceNodeComponent;
        join->left = std::exchange(root()->sourceExpr->root, join);
        setTable("actor");
        join->right = std::exchange(root()->sourceExpr->root, join);
        dynamic_cast<SQLJoinSourceNodeComponent*>(join->value)->joinType = SQLJoinTypeCross;
        root()->selectColumnExpr->columns = {columnOf(film)};
    }

    void retire(SourceNode* tree) {
        DetachedParts parts;
        parts.add(std::unique_ptr<SourceNode>(tree));
        engine->retire(std::move(parts));
    }

    /// As an edit does that takes film out, and forgets about the survivor if told so.
    void removeFilm(bool forgets) {
        modify<ELEMSQLSourceExpr>(ElementSource, [&](ELEMSQLSourceExpr* element) {
            SourceNode* const join = std::exchange(element->root, element->root->right);
            if (!forgets) join->right = nullptr;
            retire(join);
            return true;
        });
    }
};

}  // namespace

TEST_F(ModificationTest, AFieldMayNameWhatABlockTookOutUntilItIsRepaired) {
    const TextCheck textCheck;
    const auto changeNothing = [](void*) {
        return false;
    };
    removeFilm(false);
    modify(ElementWhere, changeNothing);
    root()->whereExpr->root = new SQLCompareConditionComponent;  // a query that is not finished
    modify(ElementWhere, changeNothing);
    EXPECT_EQ(textCheck.accepted(), checksModifications ? 2 : 0);
    EXPECT_EQ(textCheck.refused(), checksModifications ? 1 : 0);
}

TEST_F(ModificationTest, ABlockThatLeavesSomethingBrokenEndsTheProgramAndSaysWhat) {
    if (!checksModifications) GTEST_SKIP() << "no assertions in this build";
    EXPECT_DEATH(removeFilm(true),
                 "modification of element 1 in layer 0:\n.*table \"actor\".*still stands");
    const auto deleteFilm = [](ELEMSQLSourceExpr* element) {
        delete std::exchange(element->root, nullptr);
        return false;  // and does not even say that it changed something
    };
    EXPECT_DEATH(modify<ELEMSQLSourceExpr>(ElementSource, deleteFilm),
                 "SELECT: field \"title\".*not in its statement");
    const auto bindElsewhere = [this](ELEMSQLSelectColumnExpr* element) {
        auto* column = dynamic_cast<SQLFieldColumnComponent*>(element->columns[0]);
        auto* unnamed = new SQLAnyExpressionSourceComponent;
        unnamed->expression = "actor";
        delete std::exchange(root()->sourceExpr->root->right->value, unnamed);
        column->source = unnamed;
        return true;
    };
    modify<ELEMSQLSelectColumnExpr>(ElementSelectColumn, bindElsewhere);
    const TextCheck textCheck;
    EXPECT_DEATH(modify(ElementWhere, [](void*) { return true; }),
                 "film.title.*is read as a field of another source");
}
