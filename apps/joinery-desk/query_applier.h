#pragma once

#include <QObject>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "apps/joinery-desk/query_parsing.h"
#include "apps/joinery-desk/sql_checker.h"

namespace QB {
class QBEngine_LINUX;
}

namespace QB::Desk {

class BuilderText;

/// Puts checked texts into the layer under edit, and keeps the text of what was there before, so
/// that every load can be taken back, and that again, for as long as the statement exists.
///
/// A statement can only be kept as a text that the parser reads. Where the present one is not such
/// a statement, the user is asked first. Main thread.
class QueryApplier : public QObject {
    Q_OBJECT

public:
    enum class Origin { User, Undo, Redo };

    /// @param builderText not owned: outlives the applier; knows the engine.
    QueryApplier(const QueryParsing& parsing, BuilderText* builderText, QObject* parent);

    /// Whether to give up a query that could not be brought back; @p reason may be empty.
    void setConfirmation(std::function<bool(const QString& reason)> mayGiveUp);

    /// Loads @p text, which the check has accepted for the engine's present family and schema;
    /// ended() follows. Does nothing while busy.
    void apply(const std::string& text, Origin origin = Origin::User);
    /// The text loaded last; of the job under way, while one is.
    const std::string& appliedText() const { return m_text; }
    bool isBusy() const { return m_step != Step::Idle; }
    /// Another engine: what is under way ends without success, and nothing can be taken back.
    void reset();

    /// Empty statements count as texts, too. Null: there is nothing to take back, or to do again.
    const std::string* undoText() const;
    const std::string* redoText() const;

Q_SIGNALS:
    /// From the moment when the query must not be edited until ended().
    void loadingChanged(bool isLoading);
    /// @p error is empty when the load was not begun: the user did not want it, or the engine went.
    void ended(bool isApplied, const QString& error);

private:
    enum class Step { Idle, ReadingBuilder, CheckingPrevious, Loading };
    struct History {
        std::vector<std::string> undo, redo;
    };

    void takePrevious();
    void judgePrevious(const SqlCheckResult& result);
    void load();
    void finishLater(int number, bool isAccepted);
    void finishLoad(bool isAccepted);
    void remember();
    void end(bool isApplied, const QString& error = QString());
    QBEngine_LINUX* engine() const;
    long statementId() const;

    const QueryParsing m_parsing;
    BuilderText* m_builderText;  // not owned
    SqlChecker m_checker;        // of the present query's text
    std::function<bool(const QString&)> m_mayGiveUp;
    Step m_step = Step::Idle;
    int m_number = 0;  ///< of the job under way; what comes for another one is dropped
    Origin m_origin = Origin::User;
    std::string m_text;
    std::string m_previous;
    std::map<long, History> m_histories;  // by the id of the statement
};

}  // namespace QB::Desk
