#pragma once

#include <string>
#include <vector>

#include "stringifier/statement_builder.h"

/// The statements whose texts are kept under golden/, but for those of row limits.
namespace QB::Test {

struct GoldenCase {
    const char* name;
    Statement (*build)();
    bool quotesWhenNeeded = false;  ///< else every name is quoted
};

inline Statement workedExample() {
    Statement s = newStatement();
    SourceNode* orders = table("orders", "o", {"shop"});
    SourceNode* customers = table("customers", "", {"shop"});
    auto* on = compare(field(orders, "cust_id"), CompareOpEqual, {field(customers, "id")});
    s->sourceExpr->root = join(orders, SQLJoinTypeInner, customers, on);
    s->selectColumnExpr->columns = {field(orders, "id"), field(customers, "name", "n")};
    s->whereExpr->root = chain(
        SQLLogicGateAnd, {compare(field(orders, "total"), CompareOpGreater, {expression("100")}),
                          compare(field(customers, "city"), CompareOpContains, {expression("x")})});
    s->orderByExpr->columns = {directed(field(orders, "id"), OrderDirectionDescending)};
    s->limitExpr->rowCount = 10;
    return s;
}

inline Statement nestedSubqueries() {
    Statement innermost = newStatement();
    SourceNode* items = table("items", "", {"shop"});
    innermost->sourceExpr->root = items;
    innermost->selectColumnExpr->columns = {field(items, "order_id")};
    innermost->whereExpr->root = compare(field(items, "n"), CompareOpGreater, {expression("1")});

    Statement inner = newStatement();
    SourceNode* several = subquery(std::move(innermost), "several");
    SourceNode* orders = table("orders", "", {"shop"});
    inner->sourceExpr->root =
        join(orders, SQLJoinTypeLeft, several,
             compare(field(orders, "id"), CompareOpEqual, {field(several, "order_id")}));
    inner->selectColumnExpr->columns = {expression("x")};

    Statement outer = newStatement();
    outer->sourceExpr->root = subquery(std::move(inner), "s");
    return outer;
}

inline Statement brackets() {
    Statement s = newStatement();
    SourceNode* a = table("a");
    SourceNode* b = table("b");
    SourceNode* inner = join(b, SQLJoinTypeComma, bracket(table("c")));
    s->sourceExpr->root =
        join(a, SQLJoinTypeCross, bracket(join(inner, SQLJoinTypeInner, table("d"))));
    const auto isOne = [](SourceNode* source) {
        return compare(field(source, "x"), CompareOpEqual, {expression("1")});
    };
    auto* either = chain(SQLLogicGateOr, {isOne(a), negated(bracketed(isOne(b)))});
    s->whereExpr->root =
        chain(SQLLogicGateAnd, {negated(isOne(a)), bracketed(either), value({expression("y")})});
    return s;
}

inline Statement everyOperator() {
    Statement s = newStatement();
    SourceNode* t = table("t");
    s->sourceExpr->root = t;
    std::vector<SQLAbstractConditionComponent*> all;
    for (int op = CompareOpNone; op <= CompareOpNotIn; ++op) {
        const bool isFree = op == CompareOpNone;
        all.push_back(compare(field(t, "a"), static_cast<CompareOp>(op),
                              {expression(isFree ? "GLOB 'x'" : "1"), expression("2")}));
    }
    s->whereExpr->root = chain(SQLLogicGateAnd, all);
    return s;
}

inline Statement everyJoin() {
    Statement s = newStatement();
    SourceNode* root = table("t");
    for (int type = SQLJoinTypeCustom; type <= SQLJoinTypeFullOuter; ++type) {
        SourceNode* right = table("t" + std::to_string(type));
        auto* on = compare(field(right, "id"), CompareOpEqual, {expression("1")});
        root = join(root, static_cast<SQLJoinType>(type), right, on);
        joinOf(root)->joinText = "STRAIGHT_JOIN";
    }
    s->sourceExpr->root = root;
    return s;
}

/// d, a JOIN (b LEFT JOIN c), e JOIN (f CROSS JOIN g): without brackets in the model, as links draw
/// it.
inline Statement joinsToTheRight() {
    Statement s = newStatement();
    SourceNode* a = table("a");
    SourceNode* b = table("b");
    SourceNode* c = table("c");
    const auto same = [](SourceNode* left, SourceNode* right) {
        return compare(field(left, "id"), CompareOpEqual, {field(right, "id")});
    };
    SourceNode* inner = join(b, SQLJoinTypeLeft, c, same(b, c));
    SourceNode* joined = join(a, SQLJoinTypeInner, inner, same(a, b));
    SourceNode* e = table("e");
    SourceNode* g = table("g");
    SourceNode* crossed =
        join(e, SQLJoinTypeLeft, join(table("f"), SQLJoinTypeCross, g), same(e, g));
    SourceNode* both = join(table("d"), SQLJoinTypeComma, joined);
    s->sourceExpr->root = join(both, SQLJoinTypeComma, crossed);
    return s;
}

inline Statement usingLists() {
    Statement s = newStatement();
    const auto usingJoin = [](SourceNode* left, SourceNode* right,
                              SQLAbstractConditionComponent* columns) {
        SourceNode* node = join(left, SQLJoinTypeInner, right, columns);
        joinOf(node)->isUsing = true;
        return node;
    };
    s->sourceExpr->root =
        usingJoin(usingJoin(table("a"), table("b"), value({expression("id, \"day\"")})), table("c"),
                  bracketed(nullptr));
    return s;
}

inline Statement twoSchemas() {
    Statement s = newStatement();
    SourceNode* a = table("a", "", {"shop"});
    SourceNode* b = table("b", "", {"depot"});
    s->sourceExpr->root = join(a, SQLJoinTypeComma, b);
    s->selectColumnExpr->columns = {field(a, "x"), field(b, "y"), field(a, "")};
    return s;
}

/// The outer statement reads one schema, the subquery two, and the rest of the outer one follows.
inline Statement schemasBySubquery() {
    Statement s = newStatement();
    SourceNode* a = table("a", "", {"shop"});
    SourceNode* deep = table("deep", "", {"server", "shop"});
    s->sourceExpr->root =
        join(join(a, SQLJoinTypeComma, subquery(twoSchemas())), SQLJoinTypeComma, deep);
    s->selectColumnExpr->columns = {field(a, "x"), field(deep, "z")};
    s->whereExpr->root = compare(field(a, "x"), CompareOpIsNotNull);
    return s;
}

/// Aliases of sources as qualifiers, and aliases of columns referred to.
inline Statement aliases() {
    Statement s = newStatement();
    SourceNode* root = nullptr;
    for (const std::string name : {"o", "Y", "2", "My A", "a$b", "\xC3\xA4", "select", "level"}) {
        SourceNode* source = table("t", name);
        root = root ? join(root, SQLJoinTypeComma, source) : source;
        SQLFieldColumnComponent* column = field(source, "a", name);
        s->selectColumnExpr->columns.push_back(column);
        s->orderByExpr->columns.push_back(directed(referenceTo(column), OrderDirectionNone));
    }
    s->sourceExpr->root = root;
    return s;
}

inline Statement wildcards() {
    Statement s = newStatement();
    SourceNode* t = table("t");
    s->sourceExpr->root = t;
    s->selectColumnExpr->columns = {field(t, "", "ignored"), field(nullptr, "", "ignored"),
                                    aggregate("COUNT", field(nullptr, "", "n")),
                                    aggregate("SUM", field(t, "a", "total"))};
    return s;
}

inline Statement betweenShapes() {
    Statement s = newStatement();
    SourceNode* t = table("t");
    s->sourceExpr->root = t;
    const auto between = [t](std::vector<SQLAbstractConditionComponent*> bounds) {
        auto* condition = new SQLCompareConditionComponent;
        condition->leftValue = value({field(t, "a")});
        condition->compareOp = CompareOpBetween;
        condition->rightValue = chain(SQLLogicGateAnd, bounds);
        return condition;
    };
    const auto number = [](const char* text) {
        return expression(text);
    };
    s->whereExpr->root =
        chain(SQLLogicGateOr, {between({value({number("1"), number("2")})}),
                               between({value({number("3")}), value({number("4")})}),
                               between({value({number("5")}), bracketed(value({number("6")}))}),
                               negated(between({value({number("7"), number("8")})}))});
    return s;
}

inline Statement groupsAndFreeText() {
    Statement s = newStatement();
    SourceNode* made = freeSource("generate_series(1, 3)");
    s->sourceExpr->root = made;
    s->selectColumnExpr->selectOption = "DISTINCT";
    s->selectColumnExpr->columns = {expression("g % 2", "odd"), expression("now()")};
    s->groupByExpr->columns = {directed(expression("1"), OrderDirectionNone),
                               directed(expression("2"), OrderDirectionDescending),
                               expression("3")};
    s->havingExpr->root = compare(expression("count(*)"), CompareOpIn,
                                  {expression("1"), expression("2"), expression("3")});
    s->orderByExpr->columns = {directed(expression("1"), OrderDirectionAscending),
                               directed(expression("2"), OrderDirectionDescending),
                               directed(expression("3"), OrderDirectionNone)};
    return s;
}

inline Statement quotedWhenNeeded() {
    Statement s = newStatement();
    SourceNode* orders = table("orders", "o", {"shop"});
    SourceNode* odd = table("Order Lines", "My A", {"select"});
    s->sourceExpr->root = join(orders, SQLJoinTypeInner, odd,
                               compare(field(orders, "id"), CompareOpEqual, {field(odd, "ORDER")}));
    s->selectColumnExpr->columns = {field(orders, "id", "current_date"),
                                    aggregate("COUNT", field(nullptr, "", "n")),
                                    field(nullptr, "true")};
    return s;
}

inline std::vector<GoldenCase> goldenCases() {
    return {
        {"empty", newStatement},
        {"worked_example", workedExample},
        {"nested_subqueries", nestedSubqueries},
        {"brackets", brackets},
        {"every_operator", everyOperator},
        {"every_join", everyJoin},
        {"joins_to_the_right", joinsToTheRight},
        {"using", usingLists},
        {"schemas_by_subquery", schemasBySubquery},
        {"aliases", aliases},
        {"wildcards", wildcards},
        {"between", betweenShapes},
        {"groups_and_free_text", groupsAndFreeText},
        {"quoted_when_needed", quotedWhenNeeded, true},
    };
}

}  // namespace QB::Test
