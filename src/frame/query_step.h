#pragma once

#include <QByteArray>
#include <QUndoCommand>
#include <cstddef>
#include <string>
#include <vector>

#include "canvas/drawer/diagram_arrangement.h"

namespace QB {

/// What two texts do not have in common at their beginning and at their end.
class TextDifference {
public:
    TextDifference() = default;
    TextDifference(const std::string& before, const std::string& after);

    /// The text after, of the one before; and back.
    std::string applied(const std::string& before) const;
    std::string reverted(const std::string& after) const;

    bool isEmpty() const { return m_removed.empty() && m_inserted.empty(); }
    /// Bytes on the heap.
    std::size_t size() const;

private:
    static std::string replaced(const std::string& text, std::size_t prefix,
                                const std::string& removed, const std::string& inserted);

    std::size_t m_prefix = 0;
    std::string m_removed;
    std::string m_inserted;
};

/// Where the user was: the layers that were open, and how the diagram of the last one stood.
struct QueryPlace {
    std::vector<long> layerPath;  ///< as QBEngine::layerPath()
    QByteArray arrangement;       ///< as encodeArrangement(); shared with other steps
};

/// @name An arrangement in few bytes, of one run of the program
/// @{
QByteArray encodeArrangement(const DiagramArrangement& arrangement);
DiagramArrangement decodeArrangement(const QByteArray& bytes);
/// @}

/// What one step has changed. Undoing and redoing is the history's, which sees the index of the
/// stack change: several steps at once are one way.
class QueryStep : public QUndoCommand {
public:
    QueryStep(const QString& name, TextDifference change, QueryPlace before, QueryPlace after)
        : QUndoCommand(name)
        , record(std::move(change))
        , placeBefore(std::move(before))
        , placeAfter(std::move(after)) {}

    void undo() override {}
    void redo() override {}

    /// Bytes, but for arrangements that @p former has, too.
    std::size_t memoryUse(const QueryStep* former) const;

    TextDifference record;  ///< see model/statement_record.h
    QueryPlace placeBefore;
    QueryPlace placeAfter;
    bool isRepeatable = false;  ///< the next one of its kind may become part of it
};

}  // namespace QB
