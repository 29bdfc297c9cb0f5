#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "model/components.h"
#include "model/statement_text.h"
#include "model/variant.h"
#include "model/vocabulary.h"
#include "stringifier/node_allocator.h"
#include "stringifier/stringified_node.h"

namespace QB {

/// Turns a component, a whole statement or any part of one, into text in the dialect of a server,
/// and remembers the range of every component in that text.
///
/// Use: createStringifier, test for null, setCurrentSchema, setParameter where needed,
/// stringifyQuery, componentRanges. Short-lived: made for one use, though a second run is allowed.
/// It quotes nothing itself: every name goes through QB::Callback::formatIdentifier, or through the
/// function of setQuoteName.
/// Thread: any, each thread with its own object; nothing is shared. The caller holds
/// queryComponentAccessMutex while other threads may change the components.
class QBQueryComponentStringifier {
public:
    /// Where each component of a text stands, those inside before those around them.
    using ComponentRangeList =
        std::vector<std::pair<const Component::AbstractQueryComponent*, QBRange>>;
    /// Gives the text of one side of the tree node that is being written: 0 and 2 are the left
    /// child (2 inside brackets), 1 is the right child. Empty where no source tree is walked.
    using SourceChildCallback = std::function<StringifiedNode(int side, int level)>;
    /// By address. A map as any other, which gets the memory of its nodes in one.
    using Ranges =
        std::map<const Component::AbstractQueryComponent*, QBRange,
                 std::less<const Component::AbstractQueryComponent*>,
                 NodeAllocator<std::pair<const Component::AbstractQueryComponent* const, QBRange>>>;

    /// Null for a family without a text form.
    static std::unique_ptr<QBQueryComponentStringifier> createStringifier(QBDatabaseInfo info);

    /// One level of @p component: its own text, with what it holds deferred. For subclasses; users
    /// call stringifyQuery. What it returns is written, or dropped, before the run ends.
    virtual StringifiedNode stringifyComponent(const Component::AbstractQueryComponent* component,
                                               int level,
                                               const SourceChildCallback& sourceChild) = 0;

    virtual ~QBQueryComponentStringifier();
    QBQueryComponentStringifier(const QBQueryComponentStringifier&) = delete;
    QBQueryComponentStringifier& operator=(const QBQueryComponentStringifier&) = delete;

    /// The schema that may be left out of qualified names.
    void setCurrentSchema(const std::string& schema);

    /// Writes names by @p quote instead of the host's function; an empty one goes back to that.
    void setQuoteName(QuoteName quote);

    /// The first value set under a key stays. Known keys: conditionValueListModeKey,
    /// partLeavesOutSchemaKey.
    void setParameter(const std::string& key, const QBVariant& value);

    /// The text of @p component, at the left margin also when it stands deep in a statement; ""
    /// for null and for a kind without text. Linear in the size of the text, any depth.
    /// Errors: what formatIdentifier throws passes through; the object stays usable.
    std::string stringifyQuery(const Component::AbstractQueryComponent* component);

    /// Where every component of the last run stands in its text, in bytes; a component's range
    /// encloses those of the components in it, a condition's runs to the end of its chain. One
    /// without text has a range of length 0. A component met twice keeps the range that ended
    /// first.
    Ranges componentRanges() const;

protected:
    explicit QBQueryComponentStringifier(QBDatabaseInfo info);

    /// An empty node of this run.
    StringifiedNode newNode() { return StringifiedNode(m_pieces); }

    /// The text of @p root and of all that it defers; appends the range of every node that has a
    /// component to @p ranges, when the last of its text is written. Linear, any depth.
    /// Errors: what an operation or quoted throws passes through.
    std::string flatten(StringifiedNode root, ComponentRangeList& ranges);

    /// @p name as the host, or the function that was set, quotes it for the server.
    std::string quoted(const std::string& name) const;

    /// Null if no parameter is set under @p key.
    const QBVariant* parameter(const std::string& key) const;

    /// Called at the start of each run; an earlier run may have ended in an exception.
    virtual void resetRun();

    const QBDatabaseInfo& databaseInfo() const { return m_databaseInfo; }
    const std::string& currentSchema() const { return m_currentSchema; }

private:
    class Flattening;

    std::map<std::string, QBVariant> m_parameters;
    QBDatabaseInfo m_databaseInfo;
    std::string m_currentSchema;
    QuoteName m_quoteName;        // empty: the host's
    ComponentRangeList m_ranges;  // of the last run, in the order in which they ended
    StringifiedPieces m_pieces;   // of this run
};

/// Parameter of type int: how a value list that is not the operand of a comparison is written.
/// 1 (the default): items separated by commas; 2: two items with AND between; else the first item.
inline const std::string conditionValueListModeKey = "SQLConditionValueListMode";

/// Parameter, any value: what is no statement, written by itself, leaves the current schema out of
/// its names as a statement does. Without it a part keeps them, since it does not know how many
/// schemas its statement has.
inline const std::string partLeavesOutSchemaKey = "partLeavesOutSchema";

}  // namespace QB
