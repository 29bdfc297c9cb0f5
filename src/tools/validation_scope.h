#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "engine/engine.h"
#include "model/components.h"
#include "tools/validation.h"

namespace QB::Tools::Validation {

/// True for a derived table that no column can name.
bool isUnnamedSubquery(const Component::SQL::SQLAbstractSourceComponent* source);

/// The statement of the current layer; null if there is none, or no engine.
Component::SQL::SQLSelectStmtComponent* currentStatement(const QBEngine* engine);

/// What the fields of the current layer may name. Made for one check: gathers the sources once, and
/// what is known of a table when a field of it is first asked for, so that a field costs a few
/// look-ups.
///
/// Valid sources are those of the layer's statement and of the statements around it: a reference to
/// one of these is kept. A path, however, reaches into a statement around only from the right side
/// of a join like CROSS APPLY, the one place from where the server looks there, too.
/// Thread: main, inside the modification of the check.
class ValidationScope {
public:
    /// @p engine has a current statement.
    explicit ValidationScope(QBEngine* engine);

    /// What is wrong with the source, the path or the name of @p field; changes nothing.
    std::optional<InvalidReason> findFault(const Component::SQL::SQLFieldColumnComponent* field);

private:
    using Source = Component::SQL::SQLAbstractSourceComponent;
    using Statement = Component::SQL::SQLSelectStmtComponent;
    using Names = std::vector<std::string>;

    /// The children of a candidate.
    struct FieldNames {
        explicit FieldNames(std::vector<QBIdentifierCandidateSnapshot> children);
        const std::vector<QBIdentifierCandidateSnapshot> fields;
        std::unordered_set<std::string_view> names;  ///< of the fields
    };

    void addOwnSources(const Statement* statement);
    void addSourcesAround(int layer);
    void addOutsideNames(const Source* source);
    const Source* findByPath(const Names& path) const;
    bool mayHaveField(const Source* source, const std::string& field);
    const FieldNames* fieldsOf(const Source* source);

    QBEngine* const m_engine;
    std::unordered_set<const Source*> m_sources;
    std::map<Names, const Source*> m_byPath;  ///< the innermost, and the first in text order
    std::unordered_map<const Source*, const FieldNames*> m_fieldsOfSource;  ///< null: not known
    std::unordered_map<const QBIdentifierCandidate*, FieldNames> m_fieldsOfCandidate;
};

}  // namespace QB::Tools::Validation
