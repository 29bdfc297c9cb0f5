#include "tools/join_lack.h"

#include <algorithm>
#include <string_view>

#include "model/callbacks.h"
#include "model/kind_of.h"
#include "model/names.h"
#include "model/tree_walks.h"
#include "model/vocabulary.h"
#include "platform/tolk/tolk.h"

namespace QB::Tools::SQL {

using namespace Component::SQL;

namespace {

using Join = SQLJoinSourceNodeComponent;

/// Without a condition they are written as NATURAL.
bool isOuter(const Join* join) {
    return join->joinType == SQLJoinTypeLeft || join->joinType == SQLJoinTypeRight ||
           join->joinType == SQLJoinTypeFullOuter;
}

bool refusesBareInnerJoin(DatabaseType type) {
    return type == DatabaseTypePostgreSQL || type == DatabaseTypeOracle ||
           type == DatabaseTypeSQLServer;
}

template <typename Visit>
void visitJoins(const SourceNode* root, const Visit& visit) {
    visitSourceNodes(root, [&visit](const SourceNode* node) {
        if (const auto* join = ifKind<Join>(node->value)) visit(join);
    });
}

}  // namespace

bool saysNatural(const Join* join) {
    constexpr std::string_view natural = "natural ";
    const std::string_view read(join->joinText);
    return equalWithoutCase(read.substr(0, natural.size()), natural);
}

JoinLack lackOf(const Join* join, DatabaseType type) {
    if (!join->needsCondition() || join->hasCondition()) return JoinLack::None;
    if (join->isUsing) return JoinLack::Condition;
    if (join->joinType == SQLJoinTypeInner)
        return refusesBareInnerJoin(type) ? JoinLack::Condition : JoinLack::Cross;
    if (!isOuter(join)) return JoinLack::None;
    if (type == DatabaseTypeSQLServer) return JoinLack::Condition;
    return saysNatural(join) ? JoinLack::None : JoinLack::Natural;
}

NaturalJoinWatch::NaturalJoinWatch(const SourceNode* root, DatabaseType type) : m_type(type) {
    visitJoins(root, [this](const Join* join) {
        if (join->needsCondition() && join->hasCondition()) m_withCondition.insert(join->id());
    });
}

std::vector<std::string> NaturalJoinWatch::newlyNatural(const SourceNode* root) const {
    std::vector<std::string> words;
    visitJoins(root, [&](const Join* join) {
        const bool isOne = isOuter(join) && !join->hasCondition() &&
                           m_withCondition.count(join->id()) > 0 && m_type != DatabaseTypeSQLServer;
        if (!isOne) return;
        std::string word = "NATURAL " + std::string(joinTypeText(join->joinType));
        if (std::find(words.begin(), words.end(), word) == words.end())
            words.push_back(std::move(word));
    });
    return words;
}

void tellNaturalJoins(const std::vector<std::string>& words) {
    if (words.empty()) return;
    std::string all;
    for (const std::string& word : words)
        all += (all.empty() ? "" : ", ") + word;
    Callback::showError(Tolk::localizeWithArgs(Tolk::TextJoinsNatural, all.c_str()).toStdString());
}

}  // namespace QB::Tools::SQL
