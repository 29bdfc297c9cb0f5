#pragma once

#include <QString>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "apps/joinery-sql/script/declared_schema.h"
#include "engine/engine_linux.h"
#include "hostkit/host_session.h"

namespace QB::Cli {

/// What one script works on: an engine, and behind it a database or the tables that the script
/// states. All waits of a command are in here.
/// Thread: main.
class Session {
public:
    /// @param dialect none: the script says so before it needs one.
    /// @param folder where the files that the script names are looked for; empty: as the shell.
    Session(std::optional<DatabaseType> dialect, std::string schema, QString folder);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    DatabaseType family() const { return m_family; }
    /// Errors: a Refusal while there is no dialect.
    QBEngine* engine() const;
    /// The statement of the current layer.
    Component::SQL::SQLSelectStmtComponent* statement() const;

    /// Starts anew with an empty query, without tables. @p version 0: not known.
    void start(DatabaseType family, int version);
    /// Starts anew on a database file. Errors: a Refusal with the server's message; then all is as
    /// before.
    void openDatabase(const QString& file);
    /// Puts the query that @p text is in the place of the current layer's. Errors: a Refusal with
    /// the reason; the query stays.
    void parse(const std::string& text);
    QString pathOf(const QString& file) const;

    /// Null while a database is open.
    DeclaredSchema* declaredSchema() const { return m_declared.get(); }
    /// {schema, object}: a name alone lies in the current schema. Errors: a Refusal for more.
    QBIdentifierObjectPath objectPath(const std::vector<std::string>& names) const;

    /// Waits until the children of all objects on the way to the last one of @p path are known.
    void fetch(const std::vector<std::string>& path) const;
    /// Waits until all that was set off has come to its end.
    /// Errors: a Refusal with what went wrong meanwhile.
    static void waitForWork();

    /// What was announced since the last call, a line each.
    std::vector<std::string> takeAnnouncements();

    /// Changes an element of the current layer in one modification.
    void modify(TopLevelQueryComponentElementEnum element, const std::function<void()>& change);

private:
    void makeEngine();
    void destroyEngine();
    void announce(const QBNotificationParameters& parameters);

    DatabaseType m_family = DatabaseTypeNone;
    const std::string m_schema;
    const QString m_folder;
    std::unique_ptr<QBEngine_LINUX> m_engine;
    std::shared_ptr<DeclaredSchema> m_declared;
    std::unique_ptr<HostKit::HostSession> m_host;
    std::vector<std::string> m_announcements;
};

/// The name of an element as scripts have it, such as "where".
std::string elementName(TopLevelQueryComponentElementEnum element);

}  // namespace QB::Cli
