#include "hostkit/schema_reader.h"

#include <algorithm>

#include "hostkit/connection_pool.h"
#include "platform/tolk/tolk.h"

namespace QB::HostKit {
namespace {

constexpr std::size_t maxSingleRemovals = 64;

std::string utf8(const QVariant& value) {
    return value.toString().toStdString();
}

/// Arguments that a statement does not name are not bound.
struct Arguments {
    const std::string* schema = nullptr;
    const std::string* object = nullptr;

    void bindTo(QSqlQuery& query) const {
        if (schema) query.bindValue(QStringLiteral(":schema"), QString::fromStdString(*schema));
        if (object) query.bindValue(QStringLiteral(":object"), QString::fromStdString(*object));
    }
};

QString objectsErrorText(const ConnectionPool& pool, const QSqlError& error) {
    return Tolk::localizeWithArgs(Tolk::TextCannotReadObjects,
                                  pool.messageOf(error).toUtf8().constData());
}

/// Runs one of the description's statements on the calling thread's connection, and has @p makeRow
/// turn each row into what is wanted.
template <typename Row>
Fetched<Row> fetch(const Database& database, const char* DriverDescription::*sql,
                   const Arguments& arguments, Row (*makeRow)(const QSqlQuery&)) {
    Fetched<Row> result;
    const std::shared_ptr<ConnectionPool> pool = database.connections();
    if (!pool) {
        result.error = Tolk::localize(Tolk::TextDatabaseClosed);
        return result;
    }
    const StatementScope scope(*pool, std::make_shared<StopToken>());
    if (!scope.connection()) {
        result.error = scope.error();
        return result;
    }
    QSqlQuery query(scope.connection()->database());
    query.setForwardOnly(true);
    const bool isPrepared = query.prepare(QString::fromLatin1(pool->description().*sql));
    if (isPrepared) arguments.bindTo(query);
    if (isPrepared && query.exec())
        while (query.next())
            result.rows.push_back(makeRow(query));
    if (query.lastError().isValid()) {
        result.rows.clear();
        result.error = objectsErrorText(*pool, query.lastError());
    }
    return result;
}

IdentifierType objectType(const QString& kind) {
    if (kind == QLatin1String("view")) return IdentifierTypeView;
    if (kind == QLatin1String("materialized view")) return IdentifierTypeMaterializedView;
    return IdentifierTypeTable;
}

SchemaObject schemaOf(const QSqlQuery& row) {
    return {utf8(row.value(0)), IdentifierTypeSchema, 0};
}

SchemaObject objectOf(const QSqlQuery& row) {
    return {utf8(row.value(0)), objectType(row.value(1).toString()), row.value(2).toULongLong()};
}

SchemaColumn columnOf(const QSqlQuery& row) {
    return {utf8(row.value(0)), utf8(row.value(1)), row.value(2).toULongLong()};
}

ForeignKeyField foreignKeyOf(const QSqlQuery& row) {
    return {utf8(row.value(0)), utf8(row.value(1)), utf8(row.value(2)), utf8(row.value(3)),
            utf8(row.value(4))};
}

Fetched<SchemaObject> fieldsAsObjects(Fetched<SchemaColumn> columns) {
    Fetched<SchemaObject> fields;
    fields.error = columns.error;
    for (SchemaColumn& column : columns.rows)
        fields.rows.push_back({std::move(column.name), IdentifierTypeField, column.tag});
    return fields;
}

/// Brings the children of one node to what the server has now.
class ChildrenUpdate {
public:
    ChildrenUpdate(IQBIdentifierCandidateAccessor* accessor, QBIdentifierCandidate* parent,
                   const std::vector<SchemaObject>& wanted)
        : m_accessor(accessor), m_parent(parent), m_wanted(wanted) {}

    /// Nodes that stay wanted are kept if the rest can be appended behind them: panels hold on to
    /// nodes. Otherwise all are made anew, so that the server's order shows.
    void run() {
        removeVanished();
        if (!isPrefixOfWanted()) m_accessor->clearChildren(m_parent);
        for (std::size_t i = childCount(); i < m_wanted.size(); ++i)
            append(m_wanted[i]);
        refreshTags();
    }

private:
    using NameAndType = std::pair<std::string, IdentifierType>;

    std::size_t childCount() const {
        return static_cast<std::size_t>(m_accessor->childCount(m_parent));
    }

    QBIdentifierCandidate* child(std::size_t index) const {
        return m_accessor->childAt(m_parent, static_cast<int>(index));
    }

    bool isSame(QBIdentifierCandidate* node, const SchemaObject& object) const {
        return m_accessor->type(node) == object.type && m_accessor->name(node) == object.name;
    }

    bool isPrefixOfWanted() const {
        const std::size_t count = childCount();
        if (count > m_wanted.size()) return false;
        for (std::size_t i = 0; i < count; ++i)
            if (!isSame(child(i), m_wanted[i])) return false;
        return true;
    }

    std::vector<QBIdentifierCandidate*> vanished() const {
        std::set<NameAndType> names;
        for (const SchemaObject& object : m_wanted)
            names.emplace(object.name, object.type);
        std::vector<QBIdentifierCandidate*> nodes;
        for (std::size_t i = 0; i < childCount(); ++i)
            if (!names.count({m_accessor->name(child(i)), m_accessor->type(child(i))}))
                nodes.push_back(child(i));
        return nodes;
    }

    /// Each removal walks the list, so many at once are left to a fresh start.
    void removeVanished() {
        const auto nodes = vanished();
        if (nodes.size() > maxSingleRemovals) return m_accessor->clearChildren(m_parent);
        for (QBIdentifierCandidate* node : nodes)
            m_accessor->removeChild(m_parent, node);
    }

    void append(const SchemaObject& object) {
        QBIdentifierCandidate* const node = m_accessor->addChild(m_parent);
        m_accessor->setName(node, object.name);
        m_accessor->setType(node, object.type);
    }

    void refreshTags() {
        for (std::size_t i = 0; i < m_wanted.size(); ++i)
            m_accessor->setTag(child(i), m_wanted[i].tag);
    }

    IQBIdentifierCandidateAccessor* m_accessor;  // not owned: outlives the update
    QBIdentifierCandidate* m_parent;             // not owned: the tree's; null for the root
    const std::vector<SchemaObject>& m_wanted;
};

/// Collects the keys between one object and others.
class ForeignKeySearch {
public:
    ForeignKeySearch(const SchemaReader& reader, const Database& database, QString* error)
        : m_reader(reader), m_database(database), m_error(error) {}

    /// Adds the keys of @p from that refer to one of @p targets.
    void addKeys(const QBIdentifierObjectPath& from,
                 const std::set<QBIdentifierObjectPath>& targets) {
        const auto fields = m_reader.foreignKeys(schemaOrDefault(from.schema), from.object);
        if (!fields.isOk() && m_error) *m_error = fields.error;
        const auto end = fields.rows.end();
        for (auto key = fields.rows.begin(); key != end;) {
            const auto keyEnd = std::find_if(key, end, [&key](const ForeignKeyField& field) {
                return field.constraint != key->constraint;
            });
            addKey(from, {key, keyEnd}, targets);
            key = keyEnd;
        }
    }

    std::vector<QBForeignKeyConstraint> take() { return std::move(m_keys); }

private:
    using Fields = std::vector<ForeignKeyField>;

    /// Half of a composite key would join rows that do not belong together.
    static bool isBroken(const Fields& key) {
        return std::any_of(key.begin(), key.end(), [](const ForeignKeyField& field) {
            return field.referencedField.empty();
        });
    }

    void addKey(const QBIdentifierObjectPath& from, const Fields& key,
                const std::set<QBIdentifierObjectPath>& targets) {
        if (isBroken(key)) return;
        for (const QBIdentifierObjectPath& target : targets)
            if (refersTo(key.front(), target)) m_keys.push_back(constraint(from, key, target));
    }

    std::string schemaOrDefault(const std::string& schema) const {
        return schema.empty() ? m_database.defaultSchema() : schema;
    }

    bool refersTo(const ForeignKeyField& key, const QBIdentifierObjectPath& target) const {
        const auto sameName = m_database.connections()->description().sameName;
        return sameName(key.referencedObject, target.object) &&
               sameName(key.referencedSchema, schemaOrDefault(target.schema));
    }

    static QBForeignKeyConstraint constraint(const QBIdentifierObjectPath& from, const Fields& key,
                                             const QBIdentifierObjectPath& to) {
        QBForeignKeyConstraint pairs;
        for (const ForeignKeyField& field : key)
            pairs.push_back({{from.schema, from.object, field.field},
                             {to.schema, to.object, field.referencedField}});
        return pairs;
    }

    const SchemaReader& m_reader;
    const Database& m_database;
    QString* m_error;  // not owned: may be null
    std::vector<QBForeignKeyConstraint> m_keys;
};

}  // namespace

SchemaReader::SchemaReader(const Database& database) : m_database(database) {}

Fetched<SchemaObject> SchemaReader::schemas() const {
    return fetch(m_database, &DriverDescription::schemasSql, {}, schemaOf);
}

Fetched<SchemaObject> SchemaReader::objects(const std::string& schema) const {
    return fetch(m_database, &DriverDescription::objectsSql, {&schema, nullptr}, objectOf);
}

Fetched<SchemaColumn> SchemaReader::columns(const std::string& schema,
                                            const std::string& object) const {
    return fetch(m_database, &DriverDescription::columnsSql, {&schema, &object}, columnOf);
}

Fetched<ForeignKeyField> SchemaReader::foreignKeys(const std::string& schema,
                                                   const std::string& object) const {
    return fetch(m_database, &DriverDescription::foreignKeysSql, {&schema, &object}, foreignKeyOf);
}

QString SchemaReader::fillChildren(IQBIdentifierCandidateAccessor* accessor,
                                   QBIdentifierCandidate* candidate) const {
    Fetched<SchemaObject> wanted;
    const IdentifierType type = candidate ? accessor->type(candidate) : IdentifierTypeQuery;
    if (!candidate) {
        wanted = schemas();
    } else if (type == IdentifierTypeSchema) {
        wanted = objects(accessor->name(candidate));
    } else if (type != IdentifierTypeField) {
        QBIdentifierCandidate* const schema = accessor->parent(candidate);
        const std::string schemaName = schema ? accessor->name(schema) : m_database.defaultSchema();
        wanted = fieldsAsObjects(columns(schemaName, accessor->name(candidate)));
    }
    if (wanted.isOk()) ChildrenUpdate(accessor, candidate, wanted.rows).run();
    return wanted.error;
}

std::vector<QBForeignKeyConstraint> SchemaReader::findForeignKeyConstraints(
    const QBIdentifierObjectPath& object, const std::set<QBIdentifierObjectPath>& others,
    QString* error) const {
    if (!m_database.isOpen()) return {};
    ForeignKeySearch search(*this, m_database, error);
    search.addKeys(object, others);
    for (const QBIdentifierObjectPath& other : others)
        if (!(other == object)) search.addKeys(other, {object});
    return search.take();
}

QBForeignKeys SchemaReader::findForeignKeys(const QBIdentifierObjectPath& object,
                                            const std::set<QBIdentifierObjectPath>& others,
                                            QString* error) const {
    QBForeignKeys pairs;
    for (const QBForeignKeyConstraint& key : findForeignKeyConstraints(object, others, error))
        pairs.insert(key.begin(), key.end());
    return pairs;
}

}  // namespace QB::HostKit
