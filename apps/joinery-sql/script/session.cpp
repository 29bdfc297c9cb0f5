#include "apps/joinery-sql/script/session.h"

#include <QDir>
#include <array>

#include "apps/joinery-sql/parsed_statement.h"
#include "apps/joinery-sql/script/background_work.h"
#include "apps/joinery-sql/script/refusal.h"
#include "engine/engine_core.h"
#include "model/detached_parts.h"
#include "model/notification_names.h"

namespace QB::Cli {

using Component::SQL::SQLSelectStmtComponent;

Session::Session(std::optional<DatabaseType> dialect, std::string schema, QString folder)
    : m_schema(std::move(schema)), m_folder(std::move(folder)) {
    if (dialect) start(*dialect, 0);
}

Session::~Session() {
    destroyEngine();
}

QBEngine* Session::engine() const {
    if (!m_engine) throw Refusal("there is no dialect: say \"dialect NAME\" first");
    return m_engine.get();
}

SQLSelectStmtComponent* Session::statement() const {
    return static_cast<SQLSelectStmtComponent*>(engine()->currentTopLevelQueryComponent());
}

void Session::start(DatabaseType family, int version) {
    makeEngine();
    m_family = family;
    m_declared = std::make_shared<DeclaredSchema>();
    m_engine->registerIdentifierCandidateChildrenUpdater(
        [declared = m_declared](IQBIdentifierCandidateAccessor* accessor,
                                QBIdentifierCandidate* node) {
            declared->fillChildren(accessor, node);
        });
    m_engine->registerForeignKeyConstraintSearcher(
        [declared = m_declared](const QBIdentifierObjectPath& object,
                                const std::set<QBIdentifierObjectPath>& others) {
            return declared->findKeys(object, others);
        });
    m_engine->setDatabaseInfo(family, version);
    m_engine->setCurrentSchema(m_schema);
    waitForWork();
}

void Session::openDatabase(const QString& file) {
    HostKit::ConnectionSettings settings = HostKit::ConnectionSettings::sqliteFile(file);
    settings.readOnly = true;
    HostKit::Database database;
    const QString error = database.open(settings);
    if (!error.isEmpty()) throw Refusal(error.toStdString());
    makeEngine();
    m_family = settings.family;
    m_host = std::make_unique<HostKit::HostSession>(database, m_engine.get());
    waitForWork();
}

void Session::parse(const std::string& text) {
    // The engine empties the query when it cannot read a text, so the text is tried before.
    const ParsedStatement tried(text, m_family, engine()->currentSchema());
    if (!tried.outcome().isAccepted()) throw Refusal(reasonOf(tried.outcome()));
    m_engine->parseQuery(text, {});
    waitForWork();
}

QString Session::pathOf(const QString& file) const {
    return m_folder.isEmpty() ? file : QDir(m_folder).filePath(file);
}

QBIdentifierObjectPath Session::objectPath(const std::vector<std::string>& names) const {
    if (names.size() > 2) throw Refusal("a table is NAME or SCHEMA.NAME");
    const std::string schema = names.size() > 1 ? names.front() : engine()->currentSchema();
    if (schema.empty()) throw Refusal("in which schema? Say \"schema NAME\" or SCHEMA.NAME");
    return {schema, names.back()};
}

void Session::fetch(const std::vector<std::string>& path) const {
    // What a script states may have grown since; a database is asked once.
    const bool force = m_declared != nullptr;
    engine()->addRefreshRootIdentifierCandidateChildrenRequest(force);
    for (std::size_t length = 1; length <= path.size(); ++length)
        m_engine->addRefreshIdentifierCandidateChildrenRequest(
            {path.begin(), path.begin() + static_cast<std::ptrdiff_t>(length)}, force);
    m_engine->refreshRequestedIdentifierCandidateChildren(true);
    waitForWork();
}

void Session::waitForWork() {
    settle();
    const std::string errors = takeReportedErrors();
    if (!errors.empty()) throw Refusal(errors);
}

std::vector<std::string> Session::takeAnnouncements() {
    return std::exchange(m_announcements, {});
}

void Session::modify(TopLevelQueryComponentElementEnum element,
                     const std::function<void()>& change) {
    engine()->modifyInTopLevelQueryComponentElement<ELEMAbstractTopLevelQueryExpr*>(
        element, engine()->currentTopLevelQueryComponentLayer(),
        [&change](ELEMAbstractTopLevelQueryExpr*) {
            change();
            return true;
        },
        this);
}

void Session::makeEngine() {
    destroyEngine();
    m_engine = std::make_unique<QBEngine_LINUX>();
    m_engine->registerNotifyChangeListener(
        Notification::topLevelQueryComponentElementModified,
        [this](const std::string&, const QBNotificationParameters* parameters) {
            announce(*parameters);
        });
}

/// First the engine, then the root statement, which it leaves behind for workers that still read.
void Session::destroyEngine() {
    m_host.reset();
    m_declared.reset();
    m_announcements.clear();
    if (!m_engine) return;
    const auto core = m_engine->core();
    const bool hasLayer = m_engine->currentTopLevelQueryComponentLayer() >= 0;
    auto* const root = hasLayer ? m_engine->topLevelQueryComponent(0) : nullptr;
    m_engine.reset();
    settle();
    destroyUnownedClauses(root);
    delete root;
}

void Session::announce(const QBNotificationParameters& parameters) {
    std::string line;
    const int count = parameters.at("elements.size").toInt();
    for (int i = 0; i < count; ++i) {
        const int element = parameters.at("elements[" + std::to_string(i) + ']').toInt();
        line += (line.empty() ? "" : ", ") +
                elementName(static_cast<TopLevelQueryComponentElementEnum>(element));
    }
    m_announcements.push_back(line + " of layer " + std::to_string(parameters.at("layer").toInt()));
}

std::string elementName(TopLevelQueryComponentElementEnum element) {
    constexpr std::array<const char*, 7> names = {"select", "from",  "where", "group",
                                                  "having", "order", "limit"};
    return names.at(static_cast<std::size_t>(element));
}

}  // namespace QB::Cli
