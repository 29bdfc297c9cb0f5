#pragma once

#include <QTimer>
#include <QWidget>
#include <functional>
#include <optional>
#include <string>

#include "apps/joinery-desk/query_applier.h"
#include "apps/joinery-desk/query_parsing.h"
#include "apps/joinery-desk/sql_checker.h"
#include "apps/joinery-desk/sql_file.h"

class QLabel;
class QPushButton;
class QToolButton;

namespace QB::Desk {

class BuilderText;
class SqlEditor;

/// A page with SQL text: typed, pasted, from a file or from the builder. It is checked on a worker
/// whenever typing pauses; "Apply" puts a text that is accepted into the layer that it is for: the
/// one under edit when the typing began, or where it was applied before. A text that is refused
/// changes nothing but what is said below it.
///
/// As long as the user types nothing, the text follows the builder, and there is no typing to take
/// back. What was typed is only ever replaced by an edit that undo takes back, or after openFile(),
/// openText() and startAnew(), before which the window asks. Main thread. Learns of the engine as a
/// panel of the builder in which it lies.
class SqlTab : public QWidget {
    Q_OBJECT

public:
    /// What is known of the text.
    enum class State {
        NoDatabase,  ///< nothing can be known
        Blank,
        Checking,
        Refused,
        Acceptable,  ///< the builder has something else
        Outdated,    ///< it was applied, and the builder was changed since
        Held,        ///< it is what the builder has
    };

    explicit SqlTab(const QueryParsing& parsing, QWidget* parent = nullptr);
    ~SqlTab() override;

    SqlEditor* editor() const { return m_editor; }
    QueryApplier* applier() const { return m_applier; }
    State state() const { return m_state; }
    /// What is said below the text.
    QString message() const;

    /// Checks the text if need be and applies it if it is accepted.
    /// @p done is called once, later or at once: true if the builder has the text now.
    void apply(std::function<void(bool isApplied)> done = nullptr);
    bool canApply() const;
    void loadFromBuilder();
    void goToError();

    /// True if the user has typed, or opened, what was not applied since.
    bool hasUnappliedText() const;
    /// True if the user has typed what lies in no file.
    bool hasUnsavedText() const;
    /// What the user has typed, or opened; none while the text follows the builder, or is blank.
    std::optional<QString> ownText() const;
    /// True if all that the builder has came from this text: not if it is that of a subquery.
    bool holdsQuery() const;

    /// Reads a file; fileOpened() or fileFailed() follows. Its text takes the place of the present
    /// one, and is applied to the main query when it is accepted. What is typed while it is read
    /// makes the opening fail.
    void openFile(const QString& path);
    /// A text of the user's own, from no SQL file. Unlike that of openFile() it is not applied.
    void openText(const QString& text, bool isSaved);
    /// The text lies in a file of somebody else's keeping, such as one with the whole query.
    void markSaved();
    /// Writes the text to its file, or to @p path from now on.
    /// Returns: empty, or what went wrong.
    [[nodiscard]] QString save(const QString& path = QString());
    /// Absolute; empty while there is no file.
    const QString& filePath() const { return m_file.path; }
    /// True if somebody else has written the file since it was read.
    bool isFileChangedOutside() const;
    /// An empty text without a file, which follows the builder.
    void startAnew();

    /// The name for its tab: says which layer the text is for, unless it is the main query, and
    /// whether it is saved.
    QString title() const;

Q_SIGNALS:
    /// State, title, or what can be done has changed.
    void changed();
    void fileOpened(const QString& path);
    void fileFailed(const QString& message);
    /// After a file was opened: what has become of its text.
    void fileSettled(bool isApplied);

protected:
    void changeEvent(QEvent* event) override;
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    static constexpr long noStatement = -1;

    void setUpLayout();
    void connectParts();
    void connectEngine();
    void retranslate();
    void followBuilder();
    void takeBuilderText();
    void fill(const QString& text);
    void leaveFile();
    void takeEdit();
    void takeInserted();
    void recheck();
    void checkNow();
    void takeResult(const SqlCheckResult& result);
    void takeApplied(bool isApplied, const QString& error);
    void takeFile(const SqlFile& file, QString error, int revision);
    void continueApply();
    bool openTarget();
    void applyNow();
    void finishApply(bool isApplied);
    QBEngine_LINUX* engine() const;
    DatabaseType family() const;
    long statementId(int layer) const;
    long statementUnderEdit() const;
    std::optional<int> targetLayer() const;
    bool isBlank() const;
    State judge() const;
    void showState();
    void setEnabled(QPushButton* button, bool isEnabled);
    void showMessage();
    void showPlace();
    QString stateText() const;

    SqlEditor* m_editor;         // owned by the widget
    QLabel* m_icon;              // owned by the widget
    QLabel* m_message;           // owned by the widget
    QLabel* m_place;             // owned by the widget
    QToolButton* m_goToError;    // owned by the widget
    QPushButton* m_load;         // owned by the widget
    QPushButton* m_apply;        // owned by the widget
    BuilderText* m_builderText;  // owned by the widget
    SqlChecker m_checker;
    QueryApplier* m_applier;  // owned by the widget
    QTimer m_pause;           // of the typing
    QTimer m_patience;        // runs while an answer may still come soon
    State m_state = State::NoDatabase;
    SqlFile m_file;  // its text is not used
    int m_fileNumber = 0;
    std::optional<SqlCheckRequest> m_checked;  // what m_result is about
    std::optional<SqlCheckResult> m_result;    // none while the text has not been checked
    std::optional<std::string> m_heldText;     // applied last, to m_heldStatement
    long m_heldStatement = noStatement;
    long m_textStatement = noStatement;  // that the text is for
    bool m_isBuilderChanged = false;     ///< since m_heldText was applied
    bool m_isFollowing = true;           ///< the text is the builder's, and nobody has edited it
    bool m_isTextNew = false;            ///< edited since a text was applied
    bool m_isFilling = false;            ///< the edit is ours
    bool m_isBuilderWanted = false;      ///< the builder's text is to take the place of this one
    bool m_isFileWaiting = false;        ///< to be applied as soon as it is checked
    QString m_applyError;
    std::function<void(bool)> m_applyDone;  // set while an apply() is under way
};

}  // namespace QB::Desk
