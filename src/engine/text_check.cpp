#include "engine/text_check.h"

#include <algorithm>
#include <map>
#include <memory>
#include <set>
#include <tuple>
#include <utility>
#include <vector>

#include "model/detached_parts.h"
#include "model/element_expressions.h"
#include "model/kind_of.h"
#include "model/tree_walks.h"
#include "parser/name_quoting.h"
#include "parser/query_parser.h"
#include "stringifier/query_component_stringifier.h"

namespace QB {

using namespace Component;
using namespace Component::SQL;

namespace {

enum class Mark { Comparison, Bracket, Link };
/// Where conditions begin, as often as they begin there. A link is one of a chain, no operand.
using Marks = std::multiset<std::pair<int, Mark>>;

int endOf(QBRange range) {
    return range.location + range.length;
}

/// A statement, its text, and where in it everything stands.
///
/// Places count the bytes of the bare text: without blanks, without brackets in FROM that group
/// nothing, and without the ASC of ORDER BY, which come and go with a reading.
class WrittenStatement {
public:
    WrittenStatement(const SQLSelectStmtComponent& statement, DatabaseType type,
                     const std::string& schema) {
        const auto stringifier = QBQueryComponentStringifier::createStringifier({type, 0});
        if (!stringifier) return;
        stringifier->setCurrentSchema(schema);
        stringifier->setQuoteName(
            [type](const std::string& name) { return quotedWhereNeeded(name, type); });
        m_text = stringifier->stringifyQuery(&statement);
        m_ranges = stringifier->componentRanges();
        makeBare();
        for (const auto& [component, range] : m_ranges)
            sortIn(component, bare(range));
        std::sort(m_freeTexts.begin(), m_freeTexts.end(), [](QBRange a, QBRange b) {
            return std::pair(a.location, a.length) < std::pair(b.location, b.length);
        });
    }

    const std::string& text() const { return m_text; }
    const std::string& bareText() const { return m_bareText; }
    const std::map<std::pair<int, int>, const SQLFieldColumnComponent*>& fields() const {
        return m_fields;
    }
    const std::map<std::pair<int, int>, const SQLAbstractSourceComponent*>& tables() const {
        return m_tables;
    }
    const Marks& marks() const { return m_marks; }
    /// False if a later link has no gate yet: a bracket would be read as the arguments of a
    /// function.
    bool isFinished() const { return m_isFinished; }
    /// False too for null and for what is no part of the statement.
    bool hasRange(const AbstractQueryComponent* component, QBRange& range) const {
        const auto found = m_ranges.find(component);
        if (found == m_ranges.end()) return false;
        const auto bracket = m_bracketOf.find(component);
        range = bare(bracket == m_bracketOf.end() ? found->second : bracket->second);
        return true;
    }

    /// True if @p range touches free text.
    bool isFree(QBRange range) const {
        const auto behind =
            std::partition_point(m_freeTexts.begin(), m_freeTexts.end(),
                                 [&](QBRange free) { return endOf(free) < range.location; });
        return behind != m_freeTexts.end() && behind->location <= endOf(range);
    }

    /// True if the generator added the bracket that begins at @p place.
    bool isAdded(int place) const {
        return std::any_of(m_added.begin(), m_added.end(), [&](int added) {
            return bare({added, 0}).location == place;
        });
    }

    std::string excerpt(QBRange range) const {
        return "\"" +
               m_bareText.substr(static_cast<std::size_t>(range.location),
                                 static_cast<std::size_t>(range.length)) +
               "\"";
    }

private:
    void makeBare() {
        std::vector<bool> isLeftOut(m_text.size());
        const auto leaveOut = [&](int start, int length) {
            for (int i = start; i < start + length; ++i)
                isLeftOut.at(static_cast<std::size_t>(i)) = true;
        };
        for (const auto& [component, range] : m_ranges) {
            if (const auto* statement = ifKind<SQLSelectStmtComponent>(component))
                leaveOutForms(statement, leaveOut);
        }
        m_places.push_back(0);
        for (std::size_t i = 0; i < m_text.size(); ++i) {
            const bool isBlank = m_text[i] == ' ' || m_text[i] == '\n' || m_text[i] == '\t';
            if (!isBlank && !isLeftOut[i]) m_bareText += m_text[i];
            m_places.push_back(static_cast<int>(m_bareText.size()));
        }
    }

    template <typename LeaveOut>
    void leaveOutForms(const SQLSelectStmtComponent* statement, const LeaveOut& leaveOut) {
        for (const SQLAbstractColumnComponent* column : statement->orderByExpr->columns) {
            const auto found = m_ranges.find(column);
            if (found == m_ranges.end()) continue;
            const int end = endOf(found->second);
            if (m_text.compare(static_cast<std::size_t>(end), 4, " ASC") == 0) leaveOut(end, 4);
        }
        Tools::visitSourceNodes(statement->sourceExpr->root, [&](const SourceNode* node) {
            if (isAroundOne(node)) leaveOutBracket(node, leaveOut);
            if (!isJoin(node) || isComma(node) || !node->right) return;
            if (isAroundJoin(node->right)) leaveOutBracket(node->right, leaveOut);
            leaveOutAdded(node->right, leaveOut);
        });
    }

    /// The brackets that the generator adds around a join at the right of another.
    template <typename LeaveOut>
    void leaveOutAdded(const SourceNode* join, const LeaveOut& leaveOut) {
        const auto found = m_ranges.find(join->value);
        if (!isJoin(join) || found == m_ranges.end()) return;
        const auto start = static_cast<std::size_t>(found->second.location);
        const std::size_t before = m_text.find_last_not_of(" \n\t", start - 1);
        if (m_text[before] != '(') return;
        if (hasComma(join))
            m_added.push_back(static_cast<int>(before));
        else
            leaveOutAround(join->value, leaveOut);
    }

    /// The content stands where the bracket does.
    template <typename LeaveOut>
    void leaveOutBracket(const SourceNode* bracket, const LeaveOut& leaveOut) {
        const auto found = m_ranges.find(bracket->value);
        if (found == m_ranges.end()) return;
        const auto outer = m_bracketOf.find(bracket->value);
        const QBRange range = outer == m_bracketOf.end() ? found->second : outer->second;
        m_formal.insert(bracket->value);
        m_bracketOf.insert({bracket->left->value, range});
        leaveOutAround(bracket->left->value, leaveOut);
    }

    /// The brackets right around @p content.
    template <typename LeaveOut>
    void leaveOutAround(const AbstractQueryComponent* content, const LeaveOut& leaveOut) {
        const auto found = m_ranges.find(content);
        if (found == m_ranges.end()) return;
        const auto start = static_cast<std::size_t>(found->second.location);
        const auto end = static_cast<std::size_t>(endOf(found->second));
        leaveOut(static_cast<int>(m_text.rfind('(', start - 1)), 1);
        leaveOut(static_cast<int>(m_text.find(')', end)), 1);
    }

    static bool isJoin(const SourceNode* node) {
        return ifKind<SQLJoinSourceNodeComponent>(node->value) != nullptr;
    }
    static bool isComma(const SourceNode* node) {
        const auto* join = ifKind<SQLJoinSourceNodeComponent>(node->value);
        const bool hasNoWords =
            join && join->joinType == SQLJoinTypeCustom && join->joinText.empty();
        return hasNoWords || (join && join->joinType == SQLJoinTypeComma);
    }
    /// Outside of brackets.
    static bool hasComma(const SourceNode* tree) {
        std::vector<const SourceNode*> pending = {tree};
        while (!pending.empty()) {
            const SourceNode* node = pending.back();
            pending.pop_back();
            if (!node || !node->value || !isJoin(node)) continue;
            if (isComma(node)) return true;
            pending.insert(pending.end(), {node->left, node->right});
        }
        return false;
    }

    static const SourceNode* contentOf(const SourceNode* node) {
        const bool isBracket = ifKind<SQLBracketedSourceNodeComponent>(node->value) != nullptr;
        return isBracket && node->left && node->left->value ? node->left : nullptr;
    }

    /// True for a bracket around one source, or one bracket. Its alias is then that one's.
    static bool isAroundOne(const SourceNode* node) {
        const SourceNode* content = contentOf(node);
        if (!content || isJoin(content)) return false;
        return node->value->alias.empty() || content->value->alias.empty();
    }
    static bool isAroundJoin(const SourceNode* node) {
        const SourceNode* content = contentOf(node);
        return content && isJoin(content) && !hasComma(content) && node->value->alias.empty();
    }

    QBRange bare(QBRange range) const {
        const int start = m_places.at(static_cast<std::size_t>(range.location));
        return {start, m_places.at(static_cast<std::size_t>(endOf(range))) - start};
    }

    void sortIn(const AbstractQueryComponent* component, QBRange range) {
        const std::pair place(range.location, range.length);
        if (const auto* field = ifKind<SQLFieldColumnComponent>(component)) {
            if (range.length > 0) m_fields[place] = field;
        } else if (const auto* source =
                       dynamic_cast<const SQLAbstractSourceComponent*>(component)) {
            sortInSource(source, range);
        } else if (const auto* statement = ifKind<SQLSelectStmtComponent>(component)) {
            markJoins(statement->sourceExpr->root);
            markChain(statement->whereExpr->root);
            markChain(statement->havingExpr->root);
        } else if (ifKind<SQLAnyExpressionColumnComponent>(component)) {
            m_freeTexts.push_back(range);
        } else if (ifKind<SQLCompareConditionComponent>(component)) {
            m_marks.insert({range.location, Mark::Comparison});
        } else if (const auto* bracket = ifKind<SQLBracketedConditionComponent>(component)) {
            m_marks.insert({range.location, Mark::Bracket});
            markChain(bracket->inner);
        }
    }

    void sortInSource(const SQLAbstractSourceComponent* source, QBRange range) {
        if (ifKind<SQLAnyExpressionSourceComponent>(source)) {
            m_freeTexts.push_back(range);
        } else if (ifKind<SQLJoinSourceNodeComponent>(source)) {
            return;
        } else if (hasRange(source, range) && range.length > 0 && m_formal.count(source) == 0) {
            m_tables[{range.location, range.length}] = source;
        }
    }

    void markChain(const SQLAbstractConditionComponent* first) {
        QBRange range{};
        for (const auto* link = first; link; link = link->next) {
            if (hasRange(link, range)) m_marks.insert({range.location, Mark::Link});
            m_isFinished &= link == first || link->logicGate != SQLLogicGateNone;
        }
    }

    void markJoins(const SourceNode* tree) {
        Tools::visitSourceNodes(tree, [this](const SourceNode* node) {
            const auto* join = ifKind<SQLJoinSourceNodeComponent>(node->value);
            if (join && !join->isUsing) markChain(join->condition);
        });
    }

    std::string m_text;
    std::string m_bareText;
    std::vector<int> m_places;  ///< in the bare text, of each byte of the text
    std::set<const AbstractQueryComponent*> m_formal;  ///< brackets that the bare text lacks
    std::map<const AbstractQueryComponent*, QBRange> m_bracketOf;  ///< of what stands in those
    QBQueryComponentStringifier::Ranges m_ranges;
    std::map<std::pair<int, int>, const SQLFieldColumnComponent*> m_fields;
    std::map<std::pair<int, int>, const SQLAbstractSourceComponent*> m_tables;
    Marks m_marks;
    std::vector<int> m_added;  ///< brackets around commas that the generator added, in the text
    std::vector<QBRange> m_freeTexts;
    bool m_isFinished = true;
};

/// What the text calls a source.
std::string nameOf(const SQLAbstractSourceComponent* source) {
    if (!source->alias.empty()) return source->alias;
    const auto* table = ifKind<SQLIdentifierSourceComponent>(source);
    return table ? table->name : std::string();
}

bool isSameKind(const SQLAbstractSourceComponent& a, const SQLAbstractSourceComponent& b) {
    return typeid(a) == typeid(b);
}

using Lacking = std::vector<Marks::value_type>;

/// By mark: what the text does not say of the statement, and what it says falsely.
const char* const markFaults[][2] = {
    {"is not read as a comparison", "is read as a comparison"},
    {"is not read as a bracket", "is read as a bracket"},
    {"is not read as a condition by itself", "is read as a condition by itself"}};

/// The statement and what was read from its text, which is the same text.
class Comparison {
public:
    Comparison(const WrittenStatement& written, const WrittenStatement& read,
               const std::string& schema)
        : m_written(written), m_read(read), m_schema(schema) {}

    std::string faults() {
        compareTables();
        compareFields();
        compareMarks();
        return m_faults;
    }

private:
    void add(const std::string& what, QBRange range) {
        m_faults += m_written.excerpt(range) + " " + what + "\n";
    }

    void compareTables() {
        for (const auto& [place, source] : m_written.tables()) {
            const QBRange range{place.first, place.second};
            const auto found = m_read.tables().find(place);
            const bool isThere =
                found != m_read.tables().end() && isSameKind(*found->second, *source);
            if (!isThere && !m_written.isFree(range)) add("is read as another source", range);
        }
        for (const auto& [place, source] : m_read.tables()) {
            const QBRange range{place.first, place.second};
            const bool isThere =
                m_written.tables().count(place) > 0 || m_written.isAdded(range.location);
            if (!isThere && !m_written.isFree(range)) add("is read as a source", range);
        }
    }

    void compareFields() {
        for (const auto& [place, field] : m_written.fields()) {
            const QBRange range{place.first, place.second};
            const auto found = m_read.fields().find(place);
            if (found != m_read.fields().end())
                compareReferences(field, found->second, range);
            else if (isBound(field, range) && !m_written.isFree(range))
                add("is not read as a field", range);
        }
        for (const auto& [place, field] : m_read.fields()) {
            const QBRange range{place.first, place.second};
            const bool isThere = m_written.fields().count(place) > 0 || isEmptyList(field);
            if (!isThere && !m_written.isFree(range)) add("is read as a field", range);
        }
    }

    /// Names something of the statement, and no source that only an ON before it names.
    bool isBound(const SQLFieldColumnComponent* field, QBRange range) const {
        QBRange target{};
        if (m_written.hasRange(field->referencedColumn, target)) return true;
        if (!m_written.hasRange(field->source, target)) return false;
        const bool isBehindSources = m_written.tables().begin()->first.first < range.location;
        return !isBehindSources || target.location < range.location;
    }

    /// What a SELECT list without columns is written as.
    static bool isEmptyList(const SQLFieldColumnComponent* field) {
        return field->isAsterisk && field->parentPath.empty() && field->aggregateFunction.empty();
    }

    void compareReferences(const SQLFieldColumnComponent* field,
                           const SQLFieldColumnComponent* read, QBRange range) {
        if (!isSameSource(field, read)) add("is read as a field of another source", range);
        QBRange column{};
        if (!m_written.hasRange(field->referencedColumn, column)) return;
        QBRange readColumn{};
        const bool isThere = m_read.hasRange(read->referencedColumn, readColumn);
        const bool isSame = isThere && (readColumn == column || read->referencedColumn->alias ==
                                                                    field->referencedColumn->alias);
        if (!isSame) add("is read as the name of another column", range);
    }

    bool isSameSource(const SQLFieldColumnComponent* field,
                      const SQLFieldColumnComponent* read) const {
        QBRange source{};
        // A field without a source, or of one that was taken out, is what its text says.
        if (field->referencedColumn || !m_written.hasRange(field->source, source)) return true;
        const std::string name = nameOf(field->source);
        if (!read->source) return name.empty() || isNamedBy(read->parentPath, field->source);
        QBRange readSource{};
        m_read.hasRange(read->source, readSource);
        return readSource == source || nameOf(read->source) == name;
    }

    /// True if the qualifiers of a field name @p source, alone or with its schema.
    bool isNamedBy(std::vector<std::string> path, const SQLAbstractSourceComponent* source) const {
        if (path.empty() || path.back() != nameOf(source)) return false;
        path.pop_back();
        const auto* table = ifKind<SQLIdentifierSourceComponent>(source);
        const bool isSchema = path.size() == 1 && path.front() == m_schema;
        return path.empty() || isSchema || (table && path == table->path);
    }

    void compareMarks() {
        Lacking lacking;
        const Marks& written = m_written.marks();
        const Marks& read = m_read.marks();
        std::set_difference(written.begin(), written.end(), read.begin(), read.end(),
                            std::back_inserter(lacking));
        for (const auto& [start, mark] : lacking)
            if (!m_written.isFree({start, 0})) add(markFaults[int(mark)][0], {start, 1});
        lacking.clear();
        std::set_difference(read.begin(), read.end(), written.begin(), written.end(),
                            std::back_inserter(lacking));
        // What begins where free text begins holds more than that text.
        for (const auto& [start, mark] : lacking)
            if (!m_written.isFree({start - 1, 0})) add(markFaults[int(mark)][1], {start, 1});
    }

    const WrittenStatement& m_written;
    const WrittenStatement& m_read;
    const std::string& m_schema;
    std::string m_faults;
};

std::string changedText(const WrittenStatement& written, const WrittenStatement& read, int place) {
    const auto from = static_cast<std::size_t>(place);
    return "the text of what was read differs at \"" + written.bareText().substr(from, 40) +
           "\":\n" + read.text() + "\n";
}

int differenceOf(const std::string& a, const std::string& b) {
    const auto [inA, inB] = std::mismatch(a.begin(), a.end(), b.begin(), b.end());
    return static_cast<int>(inA - a.begin());
}

/// @p isSettled if free text is written as it was read.
TextReading readText(const SQLSelectStmtComponent& statement, DatabaseType type,
                     const std::string& schema, bool isSettled) {
    const WrittenStatement written(statement, type, schema);
    if (!written.isFinished()) return {false, written.text(), {}};
    const OwnedStatement content(new SQLSelectStmtComponent);
    const auto outcome = QBQueryParser::parseStatement(content.get(), written.text(), type, schema);
    if (!outcome.isAccepted()) return {false, written.text(), {}};
    const WrittenStatement read(*content, type, schema);
    if (read.bareText() == written.bareText())
        return {true, written.text(), Comparison(written, read, schema).faults()};
    const int place = differenceOf(written.bareText(), read.bareText());
    if (!isSettled && written.isFree({place, 0})) return readText(*content, type, schema, true);
    return {true, written.text(), changedText(written, read, place)};
}

}  // namespace

TextReading readOwnText(const SQLSelectStmtComponent& statement, DatabaseType type,
                        const std::string& schema) {
    return readText(statement, type, schema, false);
}

}  // namespace QB
