#pragma once

#include <deque>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "platform/sqlet/sqlet.h"

// A double of the parser library: nodes are made by hand, with any content that the interface
// allows, and parsing a text answers what the test has set for it. What is not set is null or 0.

struct SqletColumn {
    const char* name = nullptr;
    const char* formattedName = nullptr;
    const char* parents[3] = {nullptr, nullptr, nullptr};
    const char* aggregate = nullptr;
    const char* parameter = nullptr;
    const char* complex = nullptr;
    const char* alias = nullptr;
    int isDescending = 0;
    SqletColumn* next = nullptr;
};

struct SqletExpr {
    unsigned parens = 0;
    const char* op = nullptr;
    SqletExpr* left = nullptr;
    SqletExpr* right = nullptr;
    const char* complex = nullptr;
    const char* name = nullptr;
    const char* parents[2] = {nullptr, nullptr};
    const char* aggregate = nullptr;
    SqletColumn* list = nullptr;
    std::vector<const char*> usingItems;
    int negatedAt = 0;
};

struct SqletTable {
    unsigned parens = 0;
    const char* op = nullptr;
    SqletTable* left = nullptr;
    SqletTable* right = nullptr;
    SqletExpr* on = nullptr;
    const char* parents[3] = {nullptr, nullptr, nullptr};  ///< parent1, parent0, parent
    const char* name = nullptr;
    const char* complex = nullptr;
    const char* alias = nullptr;
};

struct SqletSelect {
    SqletTable* table = nullptr;
    int isDistinct = 0;
    std::vector<SqletColumn*> columns;
    SqletExpr* where = nullptr;
    std::vector<SqletColumn*> groupBy;
    SqletExpr* having = nullptr;
    std::vector<SqletColumn*> orderBy;
    const char* fetchOption = nullptr;
    const char* offset = nullptr;
    const char* count = nullptr;
    int isPercent = 0;
    const char* returnOption = nullptr;
    const char* start = nullptr;
    int length = 0;
};

struct SqletParser {
    int errors = 0;
    const char* message = "";
    SqletErrorKind kind = SQLET_ERROR_NONE;
    int isMultiple = 0;
    int type = SQLET_STATEMENT_SELECT;
    SqletSelect select;
    int firstDifference = -1;
};

/// What parsing answers and what was asked, for the length of one test.
struct FakeSqlet {
    FakeSqlet();
    ~FakeSqlet();

    template <typename Node>
    Node* make(Node node) {
        return &std::get<std::deque<Node>>(m_nodes).emplace_back(std::move(node));
    }

    std::map<std::string, SqletParser> answers;  ///< by text; another text is no SELECT
    std::vector<std::string> parsed;
    int openHandles = 0;
    std::string calls;  ///< "parts" and "select" in order

private:
    std::tuple<std::deque<SqletColumn>, std::deque<SqletExpr>, std::deque<SqletTable>> m_nodes;
};
