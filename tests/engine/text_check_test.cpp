#include "engine/text_check.h"

#include <gtest/gtest.h>

#include "constructs/construct_table.h"
#include "model/detached_parts.h"
#include "model/element_expressions.h"
#include "parser/query_parser.h"

using namespace QB;
using namespace QB::Component::SQL;

namespace {

OwnedStatement parsed(const std::string& text, DatabaseType type, const std::string& schema) {
    OwnedStatement statement(new SQLSelectStmtComponent);
    if (!QBQueryParser::parseStatement(statement.get(), text, type, schema).isAccepted())
        statement.reset();
    return statement;
}

}  // namespace

TEST(TextCheck, IsSilentOnWhateverTheParserMakes) {
    int accepted = 0;
    for (const constructs::Cell& cell : constructs::cells()) {
        const auto type = static_cast<DatabaseType>(cell.family->number);
        const OwnedStatement statement = parsed(cell.statement(), type, cell.schema());
        if (!statement) continue;
        const TextReading reading = readOwnText(*statement, type, cell.schema());
        EXPECT_TRUE(reading.isAccepted) << cell.entry->place << "\n" << reading.text;
        EXPECT_EQ(reading.faults, "") << cell.entry->place << "\n" << reading.text;
        accepted += reading.isAccepted;
    }
    EXPECT_GT(accepted, 1000);
}

namespace {

/// A statement with its parts by name, to be broken.
struct Sound {
    OwnedStatement statement = parsed(
        "SELECT a.f AS x, b.g FROM a, b INNER JOIN c ON b.id = c.id "
        "WHERE a.f BETWEEN 1 AND 2 AND b.g = 3 HAVING b.g > 1 ORDER BY x",
        DatabaseTypeMySQL, "s");
    SourceNode* join = statement->sourceExpr->root;  // (a, b) JOIN c

    SQLAbstractColumnComponent* column(std::size_t i) const {
        return statement->selectColumnExpr->columns.at(i);
    }
    static SQLFieldColumnComponent* fieldIn(const SQLAbstractConditionComponent* comparison) {
        const auto* compare = dynamic_cast<const SQLCompareConditionComponent*>(comparison);
        const auto* value = dynamic_cast<const SQLConditionValueComponent*>(compare->leftValue);
        return dynamic_cast<SQLFieldColumnComponent*>(value->firstValue());
    }
    SQLFieldColumnComponent* selected() const {
        return dynamic_cast<SQLFieldColumnComponent*>(column(0));
    }
    SQLCompareConditionComponent* between() const {
        return dynamic_cast<SQLCompareConditionComponent*>(statement->whereExpr->root);
    }
    SQLJoinSourceNodeComponent* inner() const {
        return dynamic_cast<SQLJoinSourceNodeComponent*>(join->value);
    }
};

SourceNode* leafNode(SQLAbstractSourceComponent* value) {
    auto* node = new SourceNode;
    node->value = value;
    return node;
}

SourceNode* commaNode(SourceNode* left, SourceNode* right) {
    auto* comma = new SQLJoinSourceNodeComponent;
    comma->joinType = SQLJoinTypeComma;
    SourceNode* const node = leafNode(comma);
    node->left = left;
    node->right = right;
    return node;
}

TextReading readOf(const Sound& sound) {
    return readOwnText(*sound.statement, DatabaseTypeMySQL, "s");
}

}  // namespace

TEST(TextCheck, TellsWhereTheTextSaysSomethingElseThanTheStatement) {
    EXPECT_EQ(readOf(Sound()).faults, "");
    const auto seed = [](const char* fault, const auto& make) {
        Sound broken;
        make(broken);
        const TextReading reading = readOf(broken);
        EXPECT_TRUE(reading.isAccepted) << fault << reading.text;
        EXPECT_NE(reading.faults.find(fault), std::string::npos)
            << fault << "\nbut: " << reading.faults << reading.text;
    };
    seed("is read as a field of another source", [](Sound& s) {
        auto* unnamed = new SQLAnyExpressionSourceComponent;
        unnamed->expression = "d";
        SourceNode*& root = s.statement->sourceExpr->root;
        root = commaNode(root, leafNode(unnamed));
        s.selected()->source = unnamed;
    });
    seed("is read as the name of another column", [](Sound& s) {
        Sound::fieldIn(s.statement->havingExpr->root)->referencedColumn = s.column(0);
    });
    seed("is not read as a field",
         [](Sound& s) { s.selected()->aggregateFunction = "no aggregate"; });
    seed("is read as a source", [](Sound& s) {
        s.inner()->joinType = SQLJoinTypeCustom;
        s.inner()->joinText = "CROSS JOIN\n\tz\n\tINNER JOIN";
    });
    seed("is read as a condition by itself", [](Sound& s) {
        s.between()->leftValue->next = std::exchange(s.between()->next, nullptr);
    });
    seed("is not read as a comparison", [](Sound& s) {
        delete std::exchange(s.between()->rightValue, std::exchange(s.between()->next, nullptr));
        s.between()->compareOp = CompareOpEqual;
    });
    seed("the text of what was read differs",
         [](Sound& s) { s.statement->selectColumnExpr->selectOption = "distinct"; });
}
