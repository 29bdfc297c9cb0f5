#pragma once

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "engine/identifier_candidate.h"

namespace QB::Test {

using Table = QBIdentifierObjectPath;
using Key = QBForeignKeyConstraint;
using Texts = std::vector<std::string>;

inline Table referring(const Key& key) {
    return {key[0].first.schema, key[0].first.object};
}

inline Table referred(const Key& key) {
    return {key[0].second.schema, key[0].second.object};
}

/// The two tables in byte order, and the keys between them, the first one first.
using KeysByPair = std::map<std::pair<Table, Table>, std::vector<Key>>;

inline KeysByPair keysByPair(const std::vector<Key>& keys) {
    KeysByPair pairs;
    for (const Key& key : keys)
        pairs[std::minmax(referring(key), referred(key))].push_back(key);
    return pairs;
}

/// "a.x = b.y", ... with the fields of @p left first.
inline Texts comparisonsOf(const Key& key, const Table& left) {
    Texts texts;
    for (auto [from, to] : key) {
        if (!(referring(key) == left)) std::swap(from, to);
        texts.push_back(from.object + "." + from.field + " = " + to.object + "." + to.field);
    }
    return texts;
}

/// "a.x = b.y", whichever side stood left.
inline std::string inByteOrder(const std::string& comparison) {
    const std::size_t middle = comparison.find(" = ");
    const std::string left = comparison.substr(0, middle);
    const std::string right = comparison.substr(middle + 3);
    return std::min(left, right) + " = " + std::max(left, right);
}

/// What each of the joins compares, in byte order.
using Joins = std::multiset<std::multiset<std::string>>;

inline std::multiset<std::string> comparisonSet(const Texts& comparisons) {
    std::multiset<std::string> all;
    for (const std::string& text : comparisons)
        all.insert(inByteOrder(text));
    return all;
}

/// One for each two tables with a key between them, by the first of their keys.
inline Joins expectedJoins(const KeysByPair& pairs) {
    Joins joins;
    for (const auto& [tables, keys] : pairs)
        if (!(tables.first == tables.second))
            joins.insert(comparisonSet(comparisonsOf(keys[0], tables.first)));
    return joins;
}

}  // namespace QB::Test
