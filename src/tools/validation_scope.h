#pragma once

#include <map>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "engine/engine.h"
#include "model/components.h"
#include "model/names.h"
#include "tools/validation.h"

namespace QB::Tools::Validation {

/// True for a derived table that no column can name.
bool isUnnamedSubquery(const Component::SQL::SQLAbstractSourceComponent* source);

/// The statement of the current layer; null if there is none, or no engine.
Component::SQL::SQLSelectStmtComponent* currentStatement(const QBEngine* engine);

/// The statements of the layers up to the current one, null for one of another kind.
std::vector<const Component::SQL::SQLSelectStmtComponent*> currentLayers(const QBEngine* engine);

/// What the fields of a layer may name. Made for one check: gathers the sources once, and
/// looks for the table of a source once, so that a field costs a few look-ups.
///
/// A field refers to sources of its own statement only. Its path may also name one of a statement
/// around it, which nobody binds a reference to, from the right side of a join like CROSS APPLY:
/// the one place from where the server looks there, too.
/// Thread: main, inside the modification of the check.
class ValidationScope {
public:
    using Source = Component::SQL::SQLAbstractSourceComponent;
    using Field = Component::SQL::SQLFieldColumnComponent;

    using Statement = Component::SQL::SQLSelectStmtComponent;
    /// Statements from the outermost to the one that is checked.
    using Layers = std::vector<const Statement*>;

    /// For the last of @p layers, which is not null; others may be.
    ValidationScope(QBEngine* engine, const Layers& layers);

    /// The source that @p field refers to, valid or not, or else the first that has its path; null
    /// if there is none.
    const Source* sourceOf(const Field* field) const;
    /// What is wrong with the source or the path of @p field, which has @p source. Changes nothing.
    std::optional<InvalidReason> findFault(const Field* field, const Source* source) const;
    /// Puts the name of the source, which is no longer in the statement, before that of @p field,
    /// as the text has it: the alias, or the path of a table where the field still has an alias
    /// that was taken from it. Without the reference nothing else would say what the field belonged
    /// to, and the text could name a field of another source.
    void keepName(Field* field);
    /// The candidate that a valid source names; null if nothing is known of it.
    const QBIdentifierCandidate* tableOf(const Source* source);

private:
    using Names = std::vector<std::string>;

    void addOwnSources(const Statement* statement);
    void addNamesAround(const Statement* statement, const Statement* inner);
    void addOutsideNames(const Source* source);
    Names nameOfRetired(const Source* source);

    QBEngine* const m_engine;
    std::unordered_set<const Source*> m_sources;
    std::map<Names, const Source*> m_byPath;  ///< the innermost, and the first in text order
    std::unordered_map<const Source*, const QBIdentifierCandidate*> m_tables;
    /// Of the sources that were taken out and are kept; filled when first asked for.
    std::optional<std::unordered_map<const Source*, Names>> m_retiredNames;
};

/// Names of fields that are looked up in many tables at once: the candidates are read as far as
/// there are names left to find, and no copy of them is made. Where the server takes names of
/// fields for the same that differ in case, so does this, for the letters A to Z; the parser has
/// folded the bare names of the other families.
class FieldLookup {
public:
    using Table = const QBIdentifierCandidate*;

    /// @p engine outlives the object.
    explicit FieldLookup(const QBEngine* engine);

    void add(Table table, const std::string& name) {
        m_missing[table].insert(foldedName(name, m_hasCase));
    }
    void run();
    /// After run(): @p name was added, and is no field of @p table.
    bool isMissing(Table table, const std::string& name) const;

private:
    const QBEngine* const m_engine;
    const bool m_hasCase;
    std::unordered_map<Table, std::unordered_set<std::string>> m_missing;
};

}  // namespace QB::Tools::Validation
