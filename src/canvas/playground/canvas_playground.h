#pragma once

#include <memory>

#include <QWidget>

#include "model/export.h"

namespace QB {

class QBCanvasCommands;

/// A diagram without a query: items and links that can be dragged, resized, selected, linked and
/// deleted. Shows what the canvas can do and how fast it is; tests and measurements use it.
class QB_EXPORT QBCanvasPlayground : public QWidget {
    Q_OBJECT

public:
    /// Always the same diagram for the same numbers. @p items and @p links from 0 to 10,000.
    QBCanvasPlayground(int items, int links, QWidget* parent = nullptr);
    ~QBCanvasPlayground() override;

    /// Owned by the playground.
    QBCanvasCommands* commands() const;
    /// Shows links between tables, or between fields.
    void setShowsFieldRelations(bool fields);
    bool showsFieldRelations() const;

Q_SIGNALS:
    /// What the user has just done, for a status bar.
    void messageChanged(const QString& message);

private:
    struct State;
    const std::unique_ptr<State> m_state;
};

}  // namespace QB
