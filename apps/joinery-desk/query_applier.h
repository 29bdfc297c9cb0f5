#pragma once

#include <QObject>
#include <string>
#include <vector>

#include "apps/joinery-desk/query_parsing.h"

namespace QB::Desk {

class BuilderText;

/// Puts checked texts into the layer under edit. A text that the builder does not take after all
/// leaves the query as it was. Main thread.
class QueryApplier : public QObject {
    Q_OBJECT

public:
    /// @param builderText not owned: outlives the applier; knows the engine.
    QueryApplier(const QueryParsing& parsing, BuilderText* builderText, QObject* parent);

    /// Loads @p text, which the check has accepted for the engine's present family and schema;
    /// ended() follows. Does nothing while busy.
    void apply(const std::string& text);
    /// The text loaded last; of the job under way, while one is.
    const std::string& appliedText() const { return m_text; }
    bool isBusy() const { return m_isBusy; }
    /// Another engine: what is under way ends without success.
    void reset();

Q_SIGNALS:
    /// From the moment when the query must not be edited until ended().
    void loadingChanged(bool isLoading);
    /// @p error is empty when the load was not begun: the engine went.
    void ended(bool isApplied, const QString& error);

private:
    void load();
    void finishLater(int number, bool isAccepted);
    void finishLoad(bool isAccepted);
    void end(bool isApplied, const QString& error = QString());
    QBEngine_LINUX* engine() const;

    const QueryParsing m_parsing;
    BuilderText* m_builderText;  // not owned
    bool m_isBusy = false;
    int m_number = 0;  ///< of the job under way; what comes for another one is dropped
    std::string m_text;
    std::string m_previous;  ///< record of the query before
    std::vector<long> m_previousLayers;
};

}  // namespace QB::Desk
