#include "platform/sqlet/view.h"

#include <algorithm>
#include <string>
#include <vector>

#include "platform/sqlet/name_chain.h"
#include "platform/sqlet/names.h"
#include "platform/sqlet/source_scope.h"
#include "platform/sqlet/words.h"

namespace sqlet {

namespace {

constexpr int dialectMySQL = 1;
constexpr int dialectPostgreSQL = 2;
constexpr int dialectOracle = 3;
constexpr int dialectSQLite = 4;
constexpr int dialectSQLServer = 5;
constexpr int familyMariaDB = 6;

constexpr std::uint32_t maxColumnQualifiers = 3;
constexpr std::uint32_t maxExprQualifiers = 2;

/// What a name is built into, and so how its qualifiers come out.
enum class NamePlace {
    Item,       ///< of a list: a known source without alias gives its own path in front
    Wildcard,   ///< t.* of the SELECT list
    Condition,  ///< operand or condition: an unknown qualifier gets the current schema in front
};

/// Turns what could not be rebuilt from its parts into text.
class ViewSettler {
public:
    ViewSettler(SqletParser& parser, SqletSelect& select)
        : m_parser(parser), m_select(select), m_scope(parser, select.from) {}

    void settle() {
        settleJoinConditions();
        settleColumns(m_select.columns);
        settleColumns(m_select.groupBy);
        settleColumns(m_select.orderBy);
        settleCondition(m_select.where);
        settleCondition(m_select.having);
    }

private:
    // ---- walking
    void settleJoinConditions();
    void settleColumns(const ColumnArray& array);
    void settleAlias(SqletColumn& column);
    void settleCondition(SqletExpr* condition);
    void settleOperands(SqletExpr& compare);
    void settleLeaf(SqletExpr* leaf, bool isLeftOperand);

    // ---- judging
    bool staysName(SqletColumn& column);
    bool staysName(SqletExpr& leaf, bool isLeftOperand);
    bool isLabelKept(const SqletColumn& column) const;
    bool mayBeString(const NameChain& chain) const;
    bool isDecodableChain(const NameChain& chain, bool endsWithAsterisk) const;
    bool isPseudoColumn(const NameChain& chain) const;
    bool isConstantWord(const Token& token) const;

    template <typename Node>
    bool isQualifierKept(Node& node, const NameChain& chain, NamePlace place);
    bool isPathKept(const SqletTable& source, NamePlace place) const;
    bool isSchemaOf(const SqletTable& source, const NameChain& chain) const;
    /// True in an ON for a source that comes later: sources become known in the order of the text.
    static bool isBehind(const SourceScope::Entry& source, const NameChain& chain) {
        return source.token > chain.first;
    }
    bool isLongPathKept(const NameChain& chain, const SourceScope::Entry& found,
                        const std::string& tableName, NamePlace place) const;

    const Token& token(TokenIndex index) const { return m_parser.tokens[index]; }
    std::string decoded(TokenIndex index) const {
        return decodedName(m_parser.text, token(index), m_parser.dialect);
    }

    SqletParser& m_parser;
    SqletSelect& m_select;
    const SourceScope m_scope;
};

// ---- walking --------------------------------------------------------------------------------

void ViewSettler::settleJoinConditions() {
    std::vector<SqletTable*> waiting = {m_select.from};
    while (!waiting.empty()) {
        SqletTable* node = waiting.back();
        waiting.pop_back();
        if (!node) continue;
        settleCondition(node->on);
        waiting.push_back(node->left);
        waiting.push_back(node->right);
    }
}

void ViewSettler::settleColumns(const ColumnArray& array) {
    for (std::uint32_t i = 0; i < array.count; ++i) {
        SqletColumn& column = *array.items[i];
        settleAlias(column);
        if (column.form != ColumnForm::Text && !staysName(column)) column.form = ColumnForm::Text;
    }
}

/// An alias that no host could quote again stays in the text of its column.
void ViewSettler::settleAlias(SqletColumn& column) {
    const TokenIndex alias = column.alias;
    if (alias == noToken || isDecodable(m_parser.text, token(alias), m_parser.dialect)) return;
    column.alias = noToken;
    column.form = ColumnForm::Text;
    if (!canAliasJoinText(m_parser, column.span, alias)) return failAsNotShown(m_parser, alias);
    column.span = {std::min(column.span.first, alias), std::max(column.span.last, alias)};
}

/// Without recursion: a chain leans to the left and is as deep as it is long.
void ViewSettler::settleCondition(SqletExpr* condition) {
    std::vector<SqletExpr*> waiting = {condition};
    while (!waiting.empty()) {
        SqletExpr* expr = waiting.back();
        waiting.pop_back();
        if (!expr) continue;
        if (expr->form == ExprForm::Chain) {
            waiting.push_back(expr->left);
            waiting.push_back(expr->right);
        } else if (expr->form == ExprForm::Compare) {
            settleOperands(*expr);
        } else {
            settleLeaf(expr, false);
        }
    }
}

void ViewSettler::settleOperands(SqletExpr& compare) {
    settleLeaf(compare.left, true);
    SqletExpr* right = compare.right;
    if (!right) return;
    if (right->form != ExprForm::Chain) return settleLeaf(right, false);
    settleLeaf(right->left, false);  // the bounds of BETWEEN
    settleLeaf(right->right, false);
}

void ViewSettler::settleLeaf(SqletExpr* leaf, bool isLeftOperand) {
    if (!leaf) return;
    if (leaf->form == ExprForm::List) return settleColumns(leaf->items);
    const bool isName = leaf->form == ExprForm::Name || leaf->form == ExprForm::AggregateName;
    if (isName && !staysName(*leaf, isLeftOperand)) leaf->form = ExprForm::Text;
}

// ---- judging --------------------------------------------------------------------------------

bool ViewSettler::staysName(SqletColumn& column) {
    if (!isLabelKept(column)) return false;
    const bool isWildcard = column.form == ColumnForm::Asterisk;
    if (isWildcard && (column.alias != noToken || column.role != ColumnRole::Select)) return false;
    if (column.form == ColumnForm::AggregateStar) return true;

    const NameChain chain = nameChainOf(column);
    if (chain.qualifierCount() > maxColumnQualifiers) return false;
    if (!isDecodableChain(chain, isWildcard)) return false;
    if (!isWildcard && isPseudoColumn(chain)) return false;
    if (column.role == ColumnRole::ListItem && mayBeString(chain)) return false;
    return isQualifierKept(column, chain, isWildcard ? NamePlace::Wildcard : NamePlace::Item);
}

bool ViewSettler::staysName(SqletExpr& leaf, bool isLeftOperand) {
    const NameChain chain = nameChainOf(leaf);
    if (chain.qualifierCount() > maxExprQualifiers) return false;
    if (!isDecodableChain(chain, false) || isPseudoColumn(chain)) return false;
    if (!isLeftOperand && mayBeString(chain)) return false;
    return isQualifierKept(leaf, chain, NamePlace::Condition);
}

/// An item of the SELECT list without alias is called by its text in some families, and an alias of
/// COUNT(*) may be what ORDER BY or an outer statement means: then the text stays as it is.
bool ViewSettler::isLabelKept(const SqletColumn& column) const {
    if (column.role != ColumnRole::Select) return true;
    const bool hasAlias = column.alias != noToken;
    if (column.form == ColumnForm::AggregateStar) return !hasAlias;
    if (column.form != ColumnForm::AggregateName || hasAlias) return true;
    return m_parser.dialect == dialectPostgreSQL || m_parser.dialect == dialectSQLServer;
}

/// SQLite reads "x" as a string where no column has that name, and much text relies on it.
bool ViewSettler::mayBeString(const NameChain& chain) const {
    if (m_parser.dialect != dialectSQLite || chain.qualifierCount() > 0) return false;
    return m_parser.text[token(chain.last).offset] == '"';
}

bool ViewSettler::isDecodableChain(const NameChain& chain, bool endsWithAsterisk) const {
    for (TokenIndex part = chain.first; part <= chain.last; part += 2) {
        if (part == chain.last && endsWithAsterisk) break;
        if (!isDecodable(m_parser.text, token(part), m_parser.dialect)) return false;
    }
    return true;
}

/// A bare word that is no column, and in quotes would become one.
bool ViewSettler::isPseudoColumn(const NameChain& chain) const {
    const Token& name = token(chain.last);
    if (name.kind != TokenKind::Word) return false;
    const bool isBare = chain.qualifierCount() == 0;
    switch (m_parser.dialect) {
        case dialectOracle:  // t.ROWID, s.NEXTVAL
            return isConstantWord(name) || name.keyword == Keyword::Nextval ||
                   name.keyword == Keyword::Currval || decoded(chain.last) == "COLUMN_VALUE";
        case dialectSQLServer:  // t.IDENTITYCOL
            return isConstantWord(name);
        default:
            return isBare && isConstantWord(name);
    }
}

bool ViewSettler::isConstantWord(const Token& token) const {
    if (token.flags & SQLET_WORD_CONSTANT) return true;
    if (m_parser.dialect != dialectMySQL) return false;
    const unsigned inMariaDB = sqlet_word_class(familyMariaDB, m_parser.text.data() + token.offset,
                                                static_cast<int>(token.length));
    return (inMariaDB & SQLET_WORD_CONSTANT) != 0;
}

/// Whether the qualifiers that the name is built with find what those of the text find. Gives the
/// node the spelling of the source where the text has another case.
template <typename Node>
bool ViewSettler::isQualifierKept(Node& node, const NameChain& chain, NamePlace place) {
    const std::uint32_t count = chain.qualifierCount();
    if (count == 0) return true;
    const std::string qualifier = decoded(chain.innermost());
    const SourceScope::Entry& found = m_scope.find(qualifier);
    if (count > 1) return isLongPathKept(chain, found, qualifier, place);
    if (found.count > 1) return false;
    const bool isUnknown = found.count == 0 || isBehind(found, chain);
    if (isUnknown && place == NamePlace::Condition && m_scope.isMixed()) return false;
    if (found.count == 0) return true;
    if (!isPathKept(*found.source, place)) return false;
    if (qualifier != found.name) textsOf(node, m_parser.arena).parents[0] = found.name;
    return true;
}

/// A list item that is qualified by the name of its source is built with the source's own path.
bool ViewSettler::isPathKept(const SqletTable& source, NamePlace place) const {
    if (source.alias != noToken || place == NamePlace::Condition) return true;
    if (place == NamePlace::Wildcard && m_parser.dialect == dialectSQLite)
        return !m_scope.isSchemaWritten(source);
    return schemaDepth(source) < 2;  // no server takes more than a.b.c.d for a column
}

/// The current schema may be dropped from the front, so the table's name alone has to find it.
bool ViewSettler::isLongPathKept(const NameChain& chain, const SourceScope::Entry& found,
                                 const std::string& tableName, NamePlace place) const {
    if (place == NamePlace::Wildcard && m_parser.dialect == dialectSQLite) return false;
    // Here a.b.c may also be attribute c of column b.
    const bool hasAttributes =
        m_parser.dialect == dialectOracle || m_parser.dialect == dialectSQLServer;
    if (hasAttributes && m_scope.find(decoded(chain.first)).count > 0) return false;
    if (found.count > 1) return m_scope.isSurelyMixed();
    const bool isTable =
        found.count == 1 && found.source->alias == noToken && tableName == found.name;
    return isTable && isSchemaOf(*found.source, chain);
}

/// True if the schema in @p chain is spelled as that of @p source, or nothing else is known.
bool ViewSettler::isSchemaOf(const SqletTable& source, const NameChain& chain) const {
    const std::string schema = decoded(chain.qualifier(chain.qualifierCount() - 2));
    if (schemaDepth(source) > 0) return schema == decoded(nameChainOf(source).innermost());
    const std::string bare = m_parser.defaultSchema.value_or("");
    return bare.empty() || schema == bare;
}

// ---- coverage -------------------------------------------------------------------------------

/// Marks the tokens that the accessors show.
class CoverageMarker {
public:
    explicit CoverageMarker(SqletParser& parser) : m_parser(parser) {}

    void markStatement(const SqletSelect& select) {
        markColumns(select.columns);
        markColumns(select.groupBy);
        markColumns(select.orderBy);
        markSources(select.from);
        markCondition(select.where);
        markCondition(select.having);
    }

private:
    void markToken(TokenIndex index) {
        if (index != noToken) m_parser.coverage[index] = Coverage::Shown;
    }

    void markSpan(TokenSpan span) {
        if (span.isEmpty()) return;
        for (TokenIndex i = span.first; i <= span.last; ++i)
            markToken(i);
    }

    void markColumns(const ColumnArray& array) {
        for (std::uint32_t i = 0; i < array.count; ++i) {
            markSpan(array.items[i]->span);
            markToken(array.items[i]->alias);
        }
    }

    void markSources(const SqletTable* from) {
        std::vector<const SqletTable*> waiting = {from};
        while (!waiting.empty()) {
            const SqletTable* node = waiting.back();
            waiting.pop_back();
            if (!node) continue;
            markToken(node->alias);
            markCondition(node->on);
            if (node->form != TableForm::Join) {
                markSpan(node->span);
                continue;
            }
            if (!node->joinOperator) markSpan(node->operatorSpan);
            waiting.push_back(node->left);
            waiting.push_back(node->right);
        }
    }

    void markCondition(const SqletExpr* condition) {
        std::vector<const SqletExpr*> waiting = {condition};
        while (!waiting.empty()) {
            const SqletExpr* expr = waiting.back();
            waiting.pop_back();
            if (!expr) continue;
            if (expr->form == ExprForm::Chain || expr->form == ExprForm::Compare) {
                waiting.push_back(expr->left);
                waiting.push_back(expr->right);
            } else if (expr->form == ExprForm::List || expr->form == ExprForm::Using) {
                markColumns(expr->items);
            } else {
                markSpan(expr->span);
            }
        }
    }

    SqletParser& m_parser;
};

void refuseWhatIsNotShown(SqletParser& parser, TokenSpan statement) {
    if (statement.isEmpty()) return;
    for (TokenIndex i = statement.first; i <= statement.last; ++i) {
        if (parser.coverage[i] != Coverage::Nothing) continue;
        return failAsNotShown(parser, i);
    }
}

}  // namespace

void settleView(SqletParser& parser, SqletSelect& select) {
    ViewSettler(parser, select).settle();
    CoverageMarker(parser).markStatement(select);
    refuseWhatIsNotShown(parser, select.parts[static_cast<int>(Part::Statement)]);
}

}  // namespace sqlet
