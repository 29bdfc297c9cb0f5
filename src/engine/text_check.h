#pragma once

#include <string>

#include "model/components.h"
#include "model/vocabulary.h"

namespace QB {

/// What a statement's own text says of it, when it is read again.
struct TextReading {
    /// False: the parser refuses the text, or a later link has no gate yet; nothing is
    /// known then.
    bool isAccepted;
    std::string text;    ///< as it was generated
    std::string faults;  ///< a line for each difference; empty if there is none
};

/// Writes the text of @p statement, with names in quotes where they need them, reads it and
/// compares what was read with the statement.
///
/// The text of what was read is the same text, blanks aside. At the same places in it stand the
/// same tables, derived tables, fields, comparisons, brackets and links of chains; every field
/// belongs to the same source and refers to the same column.
///
/// One text has several models; what the text does not tell is no difference:
/// - how joins lean (`a, b JOIN c`), and so what an ON sees, and which join it belongs to if one
///   before lacks its ON; joinText; empty places;
/// - qualifiers that the generator leaves out or the parser fills in;
/// - the gate of a first link; bounds as one value with two items or as a chain; patterns
///   (contains, begins with) and IS NULL as operators or as LIKE and IS with an operand;
/// - brackets around a single source, whose alias is that source's, around a bracket, and around a
///   join at the right of another; an order without direction, which is read as ASC;
/// - the asterisk for a SELECT list without columns; the ORDER BY 1 that a limit gets where the
///   server demands an order; brackets that the generator adds; the comma for a join without words;
/// - what stands inside free text, where anything may be found; if free text is written otherwise
///   once it was read, the second reading is compared with the first;
/// - what names a field that has no source or reference in the statement, or one that was taken
///   out: its words may fit another one;
/// - the source of a field that is read without one: it has no name, or the qualifiers name it and
///   the parser binds them to nothing, as with a schema;
/// - what an ON names that stands only behind it;
/// - which of several sources, or columns, of one name is meant.
/// For debugging and tests: linear, but some hundred times the cost of an edit.
/// Thread: the caller may read the statement.
TextReading readOwnText(const Component::SQL::SQLSelectStmtComponent& statement, DatabaseType type,
                        const std::string& schema);

}  // namespace QB
