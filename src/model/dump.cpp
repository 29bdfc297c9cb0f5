#include "model/dump.h"

#include <map>
#include <vector>

#include "model/element_expressions.h"
#include "model/tree_walks.h"

namespace QB {

using namespace Component;
using namespace Component::SQL;

namespace {

std::string quoted(const std::string& text) {
    std::string result = "\"";
    for (const char c : text) {
        switch (c) {
            case '"':
                result += "\\\"";
                break;
            case '\\':
                result += "\\\\";
                break;
            case '\n':
                result += "\\n";
                break;
            case '\t':
                result += "\\t";
                break;
            default:
                result += c;
        }
    }
    return result + '"';
}

std::string pathText(const std::vector<std::string>& path) {
    std::string result = "[";
    for (const std::string& name : path) {
        if (result.size() > 1) result += ", ";
        result += quoted(name);
    }
    return result + "]";
}

/// One word a property; a property with its empty value is left out.
class Line {
public:
    explicit Line(std::string kind) : m_text(std::move(kind)) {}

    Line& text(const char* key, const std::string& value) {
        return value.empty() ? *this : word(std::string(key) + "=" + quoted(value));
    }
    Line& path(const char* key, const std::vector<std::string>& value) {
        return value.empty() ? *this : word(std::string(key) + "=" + pathText(value));
    }
    Line& number(const char* key, int value, int empty) {
        return value == empty ? *this : word(std::string(key) + "=" + std::to_string(value));
    }
    Line& flag(const char* key, bool value) { return value ? word(key) : *this; }
    Line& word(const std::string& value) {
        m_text += " " + value;
        return *this;
    }

    const std::string& str() const { return m_text; }

private:
    std::string m_text;
};

class Dumper {
public:
    enum class Extent { Whole, FirstLine };
    explicit Dumper(Extent extent) : m_extent(extent) {}

    std::string dump(const AbstractQueryComponent* component) {
        write(component, 0);
        return m_text;
    }

private:
    bool isLeftOut(int depth) const { return m_extent == Extent::FirstLine && depth > 0; }

    void line(int depth, const Line& text) {
        if (isLeftOut(depth)) return;
        m_text.append(static_cast<std::size_t>(depth) * 2, ' ').append(text.str()).append("\n");
    }

    void write(const AbstractQueryComponent* component, int depth) {
        if (isLeftOut(depth)) return;
        if (!component) return line(depth, Line("(null)"));
        if (const auto* c = dynamic_cast<const SQLSelectStmtComponent*>(component)) {
            return statement(c, depth);
        }
        if (const auto* c = dynamic_cast<const SQLAbstractSourceComponent*>(component)) {
            return source(c, depth);
        }
        if (const auto* c = dynamic_cast<const SQLAbstractColumnComponent*>(component)) {
            return column(c, depth);
        }
        if (const auto* c = dynamic_cast<const SQLAbstractConditionComponent*>(component)) {
            return chain(c, depth);
        }
        line(depth, Line("(unknown component)"));
    }

    /// Numbers the sources and SELECT columns, which references name by their ordinal.
    void number(const SQLSelectStmtComponent* c) {
        int sources = 0;
        Tools::visitSourceNodes(c->sourceExpr->root, [&](const SourceNode* node) {
            if (!node->left && !node->right) m_ordinals[node->value] = ++sources;
        });
        int columns = 0;
        for (const auto* selected : c->selectColumnExpr->columns)
            m_ordinals[selected] = ++columns;
    }

    void statement(const SQLSelectStmtComponent* c, int depth) {
        number(c);
        line(depth, Line("statement"));
        const ELEMSQLSelectColumnExpr* select = c->selectColumnExpr;
        line(depth + 1, Line("select").text("option", select->selectOption));
        for (const auto* item : select->columns)
            write(item, depth + 2);
        if (c->sourceExpr->root) {
            line(depth + 1, Line("from"));
            tree(c->sourceExpr->root, depth + 2);
        }
        conditionClause("where", c->whereExpr, depth + 1);
        columnClause("group by", c->groupByExpr, depth + 1);
        conditionClause("having", c->havingExpr, depth + 1);
        columnClause("order by", c->orderByExpr, depth + 1);
        limit(c->limitExpr, depth + 1);
    }

    void conditionClause(const char* keyword, const ELEMSQLConditionExpr* element, int depth) {
        if (!element->root) return;
        line(depth, Line(keyword));
        chain(element->root, depth + 1);
    }

    void columnClause(const char* keyword, const ELEMSQLColumnExpr* element, int depth) {
        if (element->columns.empty()) return;
        line(depth, Line(keyword));
        for (const auto* item : element->columns)
            write(item, depth + 1);
    }

    void limit(const ELEMSQLLimitExpr* element, int depth) {
        const bool isDefault = element->offset == -1 && element->rowCount == -1 &&
                               !element->isPercent && element->returnOption == "ONLY";
        if (isDefault) return;
        line(depth, Line("limit")
                        .number("offset", element->offset, -1)
                        .number("rows", element->rowCount, -1)
                        .flag("percent", element->isPercent)
                        .text("option", element->returnOption));
    }

    void tree(const SourceNode* node, int depth) {
        if (isLeftOut(depth)) return;
        if (!node || !node->value) return line(depth, Line("(empty)"));
        source(node->value, depth);
        if (dynamic_cast<const SQLJoinSourceNodeComponent*>(node->value)) {
            tree(node->left, depth + 1);
            tree(node->right, depth + 1);
        } else if (dynamic_cast<const SQLBracketedSourceNodeComponent*>(node->value)) {
            tree(node->left, depth + 1);
        }
    }

    void source(const SQLAbstractSourceComponent* value, int depth) {
        if (const auto* c = dynamic_cast<const SQLIdentifierSourceComponent*>(value)) {
            line(depth,
                 Line("table " + quoted(c->name)).path("path", c->path).text("as", c->alias));
        } else if (const auto* any = dynamic_cast<const SQLAnyExpressionSourceComponent*>(value)) {
            line(depth,
                 Line("source expression " + quoted(any->expression)).text("as", any->alias));
        } else if (const auto* derived = dynamic_cast<const SQLSubquerySourceComponent*>(value)) {
            line(depth, Line("subquery").text("as", derived->alias));
            Dumper inner(m_extent);
            inner.write(derived->subquery, depth + 1);
            m_text += inner.m_text;
        } else if (dynamic_cast<const SQLBracketedSourceNodeComponent*>(value)) {
            line(depth, Line("bracket").text("as", value->alias));
        } else if (const auto* join = dynamic_cast<const SQLJoinSourceNodeComponent*>(value)) {
            line(depth, Line("join " + joinTypeText(join->joinType))
                            .text("text", join->joinText)
                            .flag("using", join->isUsing));
            if (!join->condition) return;
            line(depth + 1, Line("on"));
            chain(join->condition, depth + 2);
        }
    }

    /// A line alone can only tell that there is a reference: what it points at stands elsewhere.
    std::string reference(const char* name, const AbstractQueryComponent* target) const {
        if (m_extent == Extent::FirstLine) return name;
        const auto found = m_ordinals.find(target);
        return std::string(name) + "=" +
               (found == m_ordinals.end() ? "elsewhere" : std::to_string(found->second));
    }

    void column(const SQLAbstractColumnComponent* value, int depth) {
        Line text("column");
        if (const auto* c = dynamic_cast<const SQLFieldColumnComponent*>(value)) {
            text = Line(c->isAsterisk ? "field *" : "field " + quoted(c->fieldName));
            text.path("path", c->parentPath).text("aggregate", c->aggregateFunction);
            if (c->source) text.word(reference("source", c->source));
            if (c->referencedColumn) text.word(reference("column", c->referencedColumn));
        } else if (const auto* any = dynamic_cast<const SQLAnyExpressionColumnComponent*>(value)) {
            text = Line("expression " + quoted(any->expression));
        }
        text.text("as", value->alias);
        using Direction = SQLAbstractColumnComponent::ExtraDataOrderDirection;
        if (const auto* order = dynamic_cast<const Direction*>(value->extraData)) {
            text.number("direction", order->direction, -1);
        }
        line(depth, text);
    }

    void chain(const SQLAbstractConditionComponent* first, int depth) {
        if (isLeftOut(depth)) return;
        for (const auto* link = first; link; link = isLeftOut(depth + 1) ? nullptr : link->next)
            condition(link, depth);
    }

    void condition(const SQLAbstractConditionComponent* link, int depth) {
        const char* gate = link->logicGate == SQLLogicGateOr    ? "or "
                           : link->logicGate == SQLLogicGateAnd ? "and "
                                                                : "";
        const std::string start = std::string(gate) + (link->negated ? "not " : "");
        if (const auto* value = dynamic_cast<const SQLConditionValueComponent*>(link)) {
            line(depth, Line(start + "value"));
            for (const auto* item : value->values)
                write(item, depth + 1);
        } else if (const auto* compare = dynamic_cast<const SQLCompareConditionComponent*>(link)) {
            line(depth, Line(start + "compare").number("op", compare->compareOp, -2));
            write(compare->leftValue, depth + 1);
            write(compare->rightValue, depth + 1);
        } else if (const auto* group = dynamic_cast<const SQLBracketedConditionComponent*>(link)) {
            line(depth, Line(start + "bracket"));
            write(group->inner, depth + 1);
        }
    }

    const Extent m_extent;
    std::string m_text;
    std::map<const AbstractQueryComponent*, int> m_ordinals;
};

}  // namespace

std::string dumpStatement(const AbstractQueryComponent* component) {
    return Dumper(Dumper::Extent::Whole).dump(component);
}

std::string dumpLine(const AbstractQueryComponent* component) {
    std::string text = Dumper(Dumper::Extent::FirstLine).dump(component);
    if (!text.empty()) text.pop_back();  // the end of the line
    return text;
}

}  // namespace QB
