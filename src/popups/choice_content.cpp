#include "popups/choice_content.h"

#include <QScopeGuard>
#include <algorithm>
#include <utility>

#include "engine/engine_core.h"
#include "engine/main_thread_call.h"
#include "model/callbacks.h"
#include "model/element_expressions.h"
#include "model/kind_of.h"
#include "model/liveness.h"
#include "model/tree_walks.h"
#include "platform/tolk/tolk.h"
#include "popups/choice_texts.h"
#include "stringifier/query_component_stringifier.h"
#include "tools/identifier_tools.h"
#include "tools/subquery_fields.h"
#include "tools/validation_scope.h"
#include "widgets/identifier_icons.h"
#include "widgets/panel_widget.h"

namespace QB {

using namespace Component;
using namespace Component::SQL;
using Tools::Identifier::findTargetIdentifierCandidate;
using Tools::Validation::currentStatement;

namespace {

bool isListed(const QBIdentifierChoiceItemData& entry,
              const QList<QBIdentifierChoiceItemData>& listed) {
    return std::any_of(listed.begin(), listed.end(), [&entry](const auto& other) {
        return entry.catalogOrSchemaName == other.catalogOrSchemaName &&
               entry.objectName == other.objectName && entry.fieldName == other.fieldName;
    });
}

/// False if what has the names of @p entry is in the list already.
bool addToList(const QBIdentifierChoiceItemData& entry, QList<QBIdentifierChoiceItemData>* listed) {
    if (!listed) return true;
    if (isListed(entry, *listed)) return false;
    listed->append(entry);
    return true;
}

}  // namespace

ChoiceContent::ChoiceContent(QBPanelWidget* panel, ChoiceTree& tree, QStringList extraSchemas,
                             QObject* parent)
    : QObject(parent)
    , m_id(issueId())
    , m_panel(panel)
    , m_tree(tree)
    , m_extraSchemas(std::move(extraSchemas)) {
    connectEngine();
}

ChoiceContent::~ChoiceContent() {
    retireId(m_id);
}

QBEngine_LINUX* ChoiceContent::engine() const {
    return m_panel ? m_panel->engine() : nullptr;
}

void ChoiceContent::connectEngine() {
    if (!engine()) return;
    const auto* emitter = engine()->signalEmitter();
    connect(emitter, &QBEngineSignalEmitter::identifierCandidateChildrenUpdateEnded, this,
            [this](QBEngine* sender, QBIdentifierCandidate* candidate) {
                const bool isLoaded = sender->candidateSnapshot(candidate).hasChildren;
                if (isLoaded) postToMainThread(m_id, [=] { childrenArrived(candidate); });
            });
    connect(emitter, &QBEngineSignalEmitter::topLevelQueryComponentElementModified, this,
            [this](QBEngine*, const QSet<TopLevelQueryComponentElementEnum>& elements) {
                if (elements.contains(ElementSource) || elements.contains(ElementSelectColumn))
                    statementChanged();
            });
    connect(emitter, &QBEngineSignalEmitter::topLevelQueryComponentLayerChanged, this,
            &ChoiceContent::statementChanged);
    connect(emitter, &QBEngineSignalEmitter::databaseTypeChanged, this,
            &ChoiceContent::statementChanged);
}

void ChoiceContent::statementChanged() {
    if (m_isStale || m_choice == QBColumnChoice::Sources) return;
    m_isStale = true;
    Q_EMIT becameStale();
}

void ChoiceContent::catchUp() {
    if (m_isStale) fill();
}

QIcon ChoiceContent::icon(IdentifierType type) {
    const auto [found, isNew] = m_icons.try_emplace(type);
    if (isNew && engine()) found->second = iconForIdentifierType(type, engine()->databaseType());
    return found->second;
}

// ---- what is offered ------------------------------------------------------------------------

std::optional<QBColumnChoice> ChoiceContent::panelChoice() const {
    const auto* host = dynamic_cast<const IQBColumnChoiceHost*>(m_panel);
    return host ? std::optional<QBColumnChoice>(host->columnChoice()) : std::nullopt;
}

void ChoiceContent::show(std::optional<QBColumnChoice> choice) {
    m_choice = choice;
    m_offersStars = m_offersStars || choice == QBColumnChoice::SelectFields;
    fill();
}

void ChoiceContent::setOffersStars(bool offers) {
    if (offers == m_offersStars) return;
    m_offersStars = offers;
    fill();
}

void ChoiceContent::fill() {
    m_isStale = false;
    {
        const ChoiceTree::Update update(m_tree);
        m_tree.clear();
        m_icons.clear();
        if (engine() && m_choice) {
            if (m_choice == QBColumnChoice::Sources) fillSchemas();
            if (m_choice == QBColumnChoice::SelectFields) addStarOfAll();
            if (m_choice == QBColumnChoice::PickedFields) addSelectColumns();
            if (m_choice != QBColumnChoice::Sources) fillFields();
        }
        fetchWanted();
        updateNotice();
    }
    Q_EMIT changed();
}

void ChoiceContent::updateNotice() {
    m_tree.setNotice(notice());
}

QString ChoiceContent::notice() const {
    const auto& nodes = m_tree.nodes();
    const bool isOfSchemas = m_choice == QBColumnChoice::Sources;
    const bool hasSources = std::any_of(nodes.begin(), nodes.end(), [](const ChoiceNode& node) {
        return node.heading.kind == ChoiceKind::Heading && node.heading.componentId != -1;
    });
    if (!m_choice && nodes.empty()) return Tolk::localize(Tolk::TextNothingOffered);
    if (isOfSchemas && m_fetches > 0) return Tolk::localize(Tolk::TextLoading);
    if (m_tree.hasFilter() && m_tree.isEmpty()) return Tolk::localize(Tolk::TextNothingFound);
    if (isOfSchemas && m_tree.isEmpty()) return Tolk::localize(Tolk::TextNoTablesKnown);
    if (isOfSchemas || hasSources) return QString();
    return Tolk::localize(m_hasOtherSources ? Tolk::TextFieldsUnknown : Tolk::TextNoSourcesYet);
}

// ---- schemas --------------------------------------------------------------------------------

void ChoiceContent::fillSchemas() {
    addSchemas(wantedSchemas());
    addKnownSchemas();
    if (!engine()->candidateSnapshot(nullptr).hasChildren) want({Names()});
    wantSchemas(wantedSchemas());
}

/// Those that are open from the start: the current one and those that the statement uses.
ChoiceContent::Names ChoiceContent::wantedSchemas() const {
    Names names = {engine()->currentSchema()};
    for (const QString& name : m_extraSchemas)
        names.push_back(name.toStdString());
    return names;
}

void ChoiceContent::addKnownSchemas() {
    Names names;
    for (QBIdentifierCandidateSnapshot& schema : engine()->childrenSnapshot(nullptr))
        names.push_back(std::move(schema.name));
    addSchemas(names);
}

void ChoiceContent::addSchemas(const Names& names) {
    std::set<QString> present = {QString()};
    for (const ChoiceNode& node : m_tree.nodes())
        present.insert(node.heading.data.catalogOrSchemaName);
    for (const std::string& name : names) {
        if (!present.insert(utf8Text(name)).second) continue;
        ChoiceNode node;
        node.heading.kind = ChoiceKind::Heading;
        node.heading.text = utf8Text(name);
        node.heading.icon = icon(IdentifierTypeSchema);
        node.heading.data.catalogOrSchemaName = utf8Text(name);
        node.isHiddenWhenEmpty = true;
        setObjects(node);
        m_tree.add(std::move(node));
    }
}

void ChoiceContent::wantSchemas(const Names& names) {
    for (const std::string& name : names) {
        const auto* schema = engine()->findChildCandidate(nullptr, name);
        const bool isLoaded = schema && engine()->candidateSnapshot(schema).hasChildren;
        if (!isLoaded && !name.empty()) want({Names{name}});
    }
}

/// What is shown stays while a schema is not loaded, as after its server was read anew.
void ChoiceContent::setObjects(ChoiceNode& node) {
    const QString& schemaName = node.heading.data.catalogOrSchemaName;
    const auto* schema = engine()->findChildCandidate(nullptr, schemaName.toStdString());
    if (!schema || !engine()->candidateSnapshot(schema).hasChildren) return;
    node.rows.clear();
    for (const QBIdentifierCandidateSnapshot& object : engine()->childrenSnapshot(schema)) {
        if (object.type == IdentifierTypeSchema || object.type == IdentifierTypeField) continue;
        ChoiceRow row;
        row.kind = ChoiceKind::Object;
        row.text = utf8Text(object.name);
        row.icon = icon(object.type);
        row.data = {schemaName, row.text, QString()};
        node.rows.push_back(std::move(row));
    }
}

// ---- fields ---------------------------------------------------------------------------------

void ChoiceContent::fillFields() {
    const auto* host = dynamic_cast<const IQBColumnChoiceHost*>(m_panel);
    if (!host) return;
    QList<QBIdentifierChoiceItemData> listed;
    m_hasOtherSources = false;
    for (const Source* source : host->choiceSources()) {
        const auto* table = ifKind<Table>(source);
        const auto* derived = ifKind<Subquery>(source);
        if (table) appendTable(*table, &listed, m_offersStars, {});
        if (derived) addSubquery(derived, m_offersStars, {});
        m_hasOtherSources = m_hasOtherSources || (!table && !derived);
    }
}

void ChoiceContent::addStarOfAll() {
    ChoiceNode node;
    node.heading.kind = ChoiceKind::Star;
    node.heading.text = starText(Tolk::localize(Tolk::TextAllFields));
    node.heading.icon = icon(IdentifierTypeField);
    m_tree.add(std::move(node));
}

void ChoiceContent::addSelectColumns() {
    ChoiceNode group;
    group.heading.kind = ChoiceKind::Heading;
    group.heading.text = Tolk::localize(Tolk::TextSelectedColumns);
    group.heading.icon = icon(IdentifierTypeQuery);
    group.isHiddenWhenEmpty = true;
    const auto* statement = currentStatement(engine());
    if (!statement) return;
    for (const SQLAbstractColumnComponent* column : statement->selectColumnExpr->columns) {
        if (!column || !canBeChosenAgain(*column)) continue;
        ChoiceRow row;
        row.kind = ChoiceKind::SelectColumn;
        row.text = selectColumnText(*column);
        row.icon = icon(IdentifierTypeField);
        row.componentId = column->id();
        row.component = reinterpret_cast<quintptr>(column);
        group.rows.push_back(std::move(row));
    }
    m_tree.add(std::move(group));
}

ChoiceNode ChoiceContent::sourceNode(const Source& source, const QString& display,
                                     bool withStar) const {
    ChoiceNode node;
    node.heading.kind = ChoiceKind::Heading;
    node.heading.text = display;
    node.heading.componentId = source.id();
    node.heading.component = reinterpret_cast<quintptr>(&source);
    node.alias = source.alias;
    node.hasStar = withStar;
    return node;
}

void ChoiceContent::addTable(const Table* source, QList<QBIdentifierChoiceItemData>* listed,
                             bool withStar, const OnItem& onItem) {
    if (!source || !engine()) return;
    appendTable(*source, listed, withStar, onItem);
    fetchWanted();
    updateNotice();
}

void ChoiceContent::appendTable(const Table& source, QList<QBIdentifierChoiceItemData>* listed,
                                bool withStar, const OnItem& onItem) {
    const bool isPlaceholder = source.name.empty();
    const QBIdentifierChoiceItemData entry = {pathText(source.path), utf8Text(source.name),
                                              utf8Text(source.alias)};
    if (isPlaceholder || !addToList(entry, listed)) return;
    ChoiceNode node =
        sourceNode(source, utf8Text(source.alias.empty() ? source.name : source.alias), withStar);
    node.names = source.path;
    node.names.push_back(source.name);
    const std::string schema = source.path.empty() ? engine()->currentSchema() : source.path.back();
    node.heading.data = {utf8Text(schema), entry.objectName, QString()};
    node.heading.toolTip = pathText(node.names, source.alias);
    setTable(node, source);
    ChoiceNode& added = m_tree.add(std::move(node));
    if (onItem) onItem(added.item);
}

/// Icon and fields as far as they are known; otherwise they are wanted.
void ChoiceContent::setTable(ChoiceNode& node, const Table& source) {
    const auto* candidate = findTargetIdentifierCandidate(&source, engine(), true).candidate;
    const auto known = engine()->candidateSnapshot(candidate);
    node.heading.icon = icon(candidate ? known.type : IdentifierTypeTable);
    Names fields;
    if (candidate) {
        for (QBIdentifierCandidateSnapshot& field : engine()->childrenSnapshot(candidate))
            fields.push_back(std::move(field.name));
    }
    const bool hasFields = !node.rows.empty() && node.rows.back().kind == ChoiceKind::Field;
    if (fields.empty() && hasFields) return;  // its schema was read anew
    node.isLoading = fields.empty() && want(placesOf(source));
    setFields(node, fields);
}

void ChoiceContent::setFields(ChoiceNode& node, const Names& fields) {
    node.rows.clear();
    node.rows.reserve(fields.size() + 1);
    ChoiceRow row;
    row.componentId = node.heading.componentId;
    row.component = node.heading.component;
    row.data = node.heading.data;
    row.icon = icon(IdentifierTypeField);
    if (node.hasStar) {
        row.kind = ChoiceKind::Star;
        row.text = starText(node.heading.text + QStringLiteral(".*"));
        node.rows.push_back(row);
    }
    row.kind = ChoiceKind::Field;
    for (const std::string& field : fields) {
        row.text = utf8Text(field);
        row.data.fieldName = row.text;
        node.rows.push_back(row);
    }
}

void ChoiceContent::addSubquery(const Subquery* source, bool withStar, const OnItem& onItem) {
    if (!source || !engine()) return;
    const bool isNamed = !source->alias.empty();
    const QString inner = isNamed ? QString() : subqueryText(*source);
    const QString prompt = Tolk::localize(Tolk::TextSubqueryPrompt);
    const QString display =
        isNamed ? utf8Text(source->alias) : QStringLiteral("<%1 - %2>").arg(prompt, inner);
    ChoiceNode node = sourceNode(*source, display, withStar);
    node.heading.icon = icon(IdentifierTypeQuery);
    node.heading.data.objectName = utf8Text(source->alias);
    const Names known = Tools::knownSubqueryFields(engine(), source);
    node.isLoading = known.empty() && canFetch();
    setFields(node, known);
    ChoiceNode& added = m_tree.add(std::move(node));
    if (onItem) onItem(added.item);
    askForSubqueryFields(*source);
}

QString ChoiceContent::subqueryText(const Subquery& source) const {
    const auto stringifier =
        QBQueryComponentStringifier::createStringifier(engine()->databaseInfo());
    if (!stringifier || !source.subquery) return QString();
    stringifier->setCurrentSchema(engine()->currentSchema());
    return shortened(utf8Text(stringifier->stringifyQuery(source.subquery)));
}

void ChoiceContent::askForSubqueryFields(const Subquery& source) {
    if (!canFetch()) return;
    Tools::obtainAndFetchSubqueryFieldList(
        engine(), &source,
        [this, id = m_id, sourceId = source.id()](const Subquery*, const Names& names) {
            if (isAlive(id)) subqueryFieldsFound(sourceId, names);
        });
}

/// The columns that are expressions are known without being fetched, and only so.
void ChoiceContent::subqueryFieldsFound(long sourceId, const Names& found) {
    ChoiceNode* const node = findNode(sourceId);
    const auto* source = dynamic_cast<const Subquery*>(sourceInCurrentLayer(engine(), sourceId));
    if (!node || !source) return;
    Names fields = Tools::knownSubqueryFields(engine(), source);
    std::set<std::string> present(fields.begin(), fields.end());
    for (const std::string& name : found) {
        if (present.insert(name).second) fields.push_back(name);
    }
    node->isLoading = false;
    setFields(*node, fields);
    m_tree.refresh(*node);
    updateNotice();
    Q_EMIT changed();
}

ChoiceNode* ChoiceContent::findNode(long sourceId) {
    auto& nodes = m_tree.nodes();
    const auto found = std::find_if(nodes.begin(), nodes.end(), [sourceId](const ChoiceNode& node) {
        return node.heading.componentId == sourceId;
    });
    return found == nodes.end() ? nullptr : &*found;
}

// ---- what arrives ---------------------------------------------------------------------------

/// Without the host's function nothing can arrive.
bool ChoiceContent::canFetch() const {
    return engine() && engine()->core()->updater();
}

/// Whether one of the paths will be fetched, or is.
bool ChoiceContent::want(const std::vector<Names>& paths) {
    if (!canFetch()) return false;
    for (const Names& path : paths) {
        if (m_requested.insert(path).second) m_wanted.push_back(path);
    }
    return !m_wanted.empty() || m_fetches > 0;
}

void ChoiceContent::fetchWanted() {
    if (m_wanted.empty() || !engine()) return;
    ++m_fetches;
    const auto fetch = engine()->identifierCandidateChildrenFetcher();
    Callback::runOperationOnDispatchedThread(
        [this, id = m_id, fetch, paths = std::exchange(m_wanted, {})] {
            const auto tell =
                qScopeGuard([this, id] { postToMainThread(id, [this] { fetchEnded(); }); });
            fetch(paths);
        });
}

void ChoiceContent::fetchEnded() {
    --m_fetches;
    if (!engine()) return;
    {
        const ChoiceTree::Update update(m_tree);
        if (m_choice == QBColumnChoice::Sources) wantAllIfNothingIsKnown();
        refreshTables([](const ChoiceNode& node) { return node.isLoading; });
        updateNotice();
    }
    Q_EMIT changed();
}

/// For a server whose current schema is not known or empty.
void ChoiceContent::wantAllIfNothingIsKnown() {
    const auto& nodes = m_tree.nodes();
    const bool isKnown = std::any_of(nodes.begin(), nodes.end(),
                                     [](const ChoiceNode& node) { return !node.rows.empty(); });
    if (isKnown) return;
    Names names;
    for (const ChoiceNode& node : nodes)
        names.push_back(node.heading.data.catalogOrSchemaName.toStdString());
    wantSchemas(names);
    fetchWanted();
}

void ChoiceContent::childrenArrived(QBIdentifierCandidate* candidate) {
    const bool isRoot = !candidate;
    if (!engine() || (!isRoot && !engine()->isCandidateInTree(candidate))) return;
    const Names arrived = engine()->candidatePath(candidate);
    {
        const ChoiceTree::Update update(m_tree);
        if (m_choice == QBColumnChoice::Sources) refreshSchemas(arrived);
        refreshTables([&](const ChoiceNode& node) {
            return !arrived.empty() && !node.names.empty() && arrived.back() == node.names.back();
        });
        updateNotice();
    }
    Q_EMIT changed();
}

void ChoiceContent::refreshSchemas(const Names& arrived) {
    if (arrived.size() > 1) return;
    if (arrived.empty()) addKnownSchemas();
    for (ChoiceNode& node : m_tree.nodes()) {
        const std::string name = node.heading.data.catalogOrSchemaName.toStdString();
        if (!arrived.empty() && arrived.front() != name) continue;
        setObjects(node);
        m_tree.refresh(node);
    }
}

template <typename Condition>
void ChoiceContent::refreshTables(const Condition& isMeant) {
    for (ChoiceNode& node : m_tree.nodes()) {
        if (!isMeant(node)) continue;
        const auto* table =
            dynamic_cast<const Table*>(sourceInCurrentLayer(engine(), node.heading.componentId));
        if (!table) continue;
        setTable(node, *table);
        m_tree.refresh(node);
    }
}

/// Where its table may stand among the candidates.
std::vector<ChoiceContent::Names> ChoiceContent::placesOf(const Table& source) const {
    using namespace Tools::Identifier;
    return tablePlaces(tablePath(source.path, source.name, engine()->currentSchema()));
}

}  // namespace QB
