#include "hostkit/schema_reader.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <deque>

#include "sqlite_file.h"

using namespace QB;
using namespace QB::HostKit;
using QB::Test::SqliteFile;

namespace {

/// A tree of candidates without an engine around it.
class PlainTree : public IQBIdentifierCandidateAccessor {
public:
    using Node = QBIdentifierCandidate;

    Node* addChild(Node* parent) override {
        Node& node = m_nodes.emplace_back();
        node.parent = at(parent);
        at(parent)->children.push_back(&node);
        return &node;
    }
    void clearChildren(Node* parent) override { at(parent)->children.clear(); }
    bool removeChild(Node* parent, Node* child) override {
        auto& children = at(parent)->children;
        const auto found = std::find(children.begin(), children.end(), child);
        if (found == children.end()) return false;
        children.erase(found);
        return true;
    }
    int childCount(Node* parent) override { return static_cast<int>(at(parent)->children.size()); }
    Node* childAt(Node* parent, int index) override {
        return at(parent)->children[static_cast<std::size_t>(index)];
    }
    Node* parent(Node* node) override { return node->parent == &root ? nullptr : node->parent; }
    void setName(Node* node, const std::string& name) override { node->name = name; }
    void setType(Node* node, IdentifierType type) override { node->type = type; }
    void setTag(Node* node, quint64 tag) override { node->tag = tag; }
    std::string name(Node* node) override { return node->name; }
    IdentifierType type(Node* node) override { return node->type; }
    quint64 tag(Node* node) override { return node->tag; }

    /// "name:type:tag" of each child.
    std::vector<std::string> children(Node* node) {
        std::vector<std::string> texts;
        for (Node* const child : at(node)->children)
            texts.push_back(child->name + ":" + std::to_string(child->type) + ":" +
                            std::to_string(child->tag));
        return texts;
    }
    Node* child(Node* node, const std::string& name) {
        for (Node* const child : at(node)->children)
            if (child->name == name) return child;
        ADD_FAILURE() << "no child " << name;
        return nullptr;
    }

    Node root;

private:
    Node* at(Node* node) { return node ? node : &root; }
    std::deque<Node> m_nodes;
};

using Texts = std::vector<std::string>;

QBForeignKeyConstraint key(std::initializer_list<std::pair<const char*, const char*>> texts) {
    const auto path = [](const QString& text) {
        const QStringList parts = text.split('.');
        return QBIdentifierFieldPath{parts[0].toStdString(), parts[1].toStdString(),
                                     parts[2].toStdString()};
    };
    QBForeignKeyConstraint pairs;
    for (const auto& [from, to] : texts)
        pairs.emplace_back(path(from), path(to));
    return pairs;
}

QBForeignKeys pairs(std::initializer_list<std::pair<const char*, const char*>> texts) {
    const QBForeignKeyConstraint listed = key(texts);
    return {listed.begin(), listed.end()};
}

const char* const richScript =
    "CREATE TABLE zebra (id INTEGER PRIMARY KEY, name TEXT NOT NULL, twice INT AS (id * 2),"
    "                    stored TEXT AS (name || '!') STORED, untyped);"
    "CREATE TABLE Apple (a, b, PRIMARY KEY (b, a)) WITHOUT ROWID;"
    "CREATE TABLE counted (id INTEGER PRIMARY KEY AUTOINCREMENT);"
    "CREATE VIEW aview AS SELECT name AS n, 1 AS one FROM zebra;"
    "CREATE VIRTUAL TABLE notes USING fts5(title, body);"
    "CREATE INDEX byName ON zebra (name);"
    "ANALYZE;";

const char* const keysScript =
    "CREATE TABLE Parent (Id INTEGER PRIMARY KEY, a, b, UNIQUE (a, b));"
    "CREATE TABLE pair (x, y, PRIMARY KEY (y, x));"
    "CREATE TABLE child (id, parent_id REFERENCES PARENT, a, b, x, y, boss REFERENCES CHILD (ID),"
    "  FOREIGN KEY (A, b) REFERENCES parent (\"A\", B), FOREIGN KEY (y, x) REFERENCES pair);"
    "CREATE TABLE broken (p REFERENCES nowhere, q REFERENCES parent (nofield), u, v,"
    "  FOREIGN KEY (u, v) REFERENCES parent, FOREIGN KEY (u, v) REFERENCES parent (a, nofield));";

}  // namespace

TEST(SchemaReader, TheTreeFillsLevelByLevel) {
    const SqliteFile file(richScript);
    const SchemaReader reader(file.open());
    PlainTree tree;
    ASSERT_EQ(reader.fillChildren(&tree, nullptr), "");
    EXPECT_EQ(tree.children(nullptr), Texts({"main:1:0"}));
    auto* const schema = tree.child(nullptr, "main");
    ASSERT_EQ(reader.fillChildren(&tree, schema), "");
    EXPECT_EQ(tree.children(schema),
              Texts({"Apple:2:0", "counted:2:0", "notes:2:8", "zebra:2:0", "aview:3:0"}));
    const auto fields = [&](const char* object) {
        auto* const node = tree.child(schema, object);
        EXPECT_EQ(reader.fillChildren(&tree, node), "");
        return tree.children(node);
    };
    EXPECT_EQ(fields("zebra"),
              Texts({"id:6:1", "name:6:2", "twice:6:4", "stored:6:4", "untyped:6:0"}));
    EXPECT_EQ(fields("Apple"), Texts({"a:6:3", "b:6:3"}));
    EXPECT_EQ(fields("aview"), Texts({"n:6:0", "one:6:0"}));
    EXPECT_EQ(fields("notes"), Texts({"title:6:0", "body:6:0"}));
    ASSERT_EQ(reader.fillChildren(&tree, tree.child(tree.child(schema, "zebra"), "id")), "");
    EXPECT_EQ(reader.columns("main", "zebra").rows[1].declaredType, "TEXT");
}

TEST(SchemaReader, AttachedFilesAreSchemasOfEveryConnection) {
    const SqliteFile file("CREATE TABLE t (a)");
    const SqliteFile other("CREATE TABLE t (b); CREATE TABLE u (c)");
    ConnectionSettings settings = file.settings();
    settings.attached.append({QStringLiteral("my \"other\""), other.path()});
    Database database;
    ASSERT_EQ(database.open(settings), "");
    const SchemaReader reader(database);
    const auto schemas = reader.schemas();
    ASSERT_EQ(schemas.rows.size(), 2u);
    EXPECT_EQ(schemas.rows[1].name, "my \"other\"");
    EXPECT_EQ(reader.objects(schemas.rows[1].name).rows.size(), 2u);
    EXPECT_EQ(reader.columns(schemas.rows[1].name, "t").rows[0].name, "b");
    EXPECT_EQ(reader.columns("main", "t").rows[0].name, "a");
    settings.attached[0].file += ".gone";
    EXPECT_NE(database.open(settings), "");
}

TEST(SchemaReader, AReloadKeepsTheNodesOfWhatIsStillThereAndAnErrorAll) {
    SqliteFile file("CREATE TABLE a (x); CREATE TABLE b (x); CREATE TABLE c (x)");
    const SchemaReader reader(file.open());
    PlainTree tree;
    auto* const schema = tree.addChild(nullptr);
    schema->name = "main";
    schema->type = IdentifierTypeSchema;
    const auto reloaded = [&](const std::string& script) {
        file.execute(script);
        EXPECT_EQ(reader.fillChildren(&tree, schema), "");
        return tree.children(schema);
    };
    EXPECT_EQ(reloaded(""), Texts({"a:2:0", "b:2:0", "c:2:0"}));
    auto* const a = tree.child(schema, "a");
    auto* const c = tree.child(schema, "c");
    EXPECT_EQ(reloaded("DROP TABLE b; CREATE TABLE d (x)"), Texts({"a:2:0", "c:2:0", "d:2:0"}));
    EXPECT_EQ(tree.child(schema, "a"), a);
    EXPECT_EQ(tree.child(schema, "c"), c);
    const Texts changed({"a:2:0", "b:2:0", "d:2:0", "c:3:0"});
    EXPECT_EQ(reloaded("CREATE TABLE b (x); DROP TABLE c; CREATE VIEW c AS SELECT 1"), changed);

    file.execute("DROP VIEW c; BEGIN EXCLUSIVE");
    EXPECT_EQ(reader.fillChildren(&tree, schema).toStdString(),
              "Cannot read the database objects: database is locked");
    EXPECT_EQ(tree.children(schema), changed);
}

TEST(ForeignKeys, AreFoundInBothDirectionsReferencingFieldFirst) {
    const SqliteFile file(keysScript);
    const SqliteFile other(keysScript);
    ConnectionSettings settings = file.settings();
    settings.attached.append({QStringLiteral("aux"), other.path()});
    Database database;
    ASSERT_EQ(database.open(settings), "");
    const SchemaReader reader(database);
    const auto found = [&](const QBIdentifierObjectPath& object,
                           const std::set<QBIdentifierObjectPath>& others) {
        return reader.findForeignKeys(object, others);
    };
    const auto expected = pairs({{"main.child.parent_id", "main.Parent.Id"},
                                 {"main.child.a", "main.Parent.a"},
                                 {"main.child.b", "main.Parent.b"}});
    EXPECT_EQ(found({"main", "child"}, {{"main", "Parent"}}), expected);
    EXPECT_EQ(found({"main", "Parent"}, {{"main", "child"}}), expected);
    // A key without columns refers to the primary key, in its order.
    EXPECT_EQ(found({"main", "child"}, {{"main", "pair"}}),
              pairs({{"main.child.y", "main.pair.y"}, {"main.child.x", "main.pair.x"}}));
    // Paths are as the caller spells them.
    EXPECT_EQ(found({"", "CHILD"}, {{"MAIN", "PAIR"}}),
              pairs({{".CHILD.y", "MAIN.PAIR.y"}, {".CHILD.x", "MAIN.PAIR.x"}}));
    EXPECT_EQ(found({"main", "child"}, {{"main", "child"}}),
              pairs({{"main.child.boss", "main.child.id"}}));
    EXPECT_TRUE(found({"main", "child"}, {{"main", "broken"}}).empty());
    EXPECT_TRUE(
        found({"main", "broken"}, {{"main", "Parent"}, {"main", "nowhere"}, {"x", "y"}}).empty());
    EXPECT_TRUE(found({"aux", "child"}, {{"main", "pair"}}).empty());
    EXPECT_EQ(found({"aux", "child"}, {{"aux", "pair"}}).size(), 2u);

    // One by one, those of the object first, the pairs in the order of the key.
    using Keys = std::vector<QBForeignKeyConstraint>;
    EXPECT_EQ(reader.findForeignKeyConstraints({"main", "Parent"}, {{"main", "child"}}),
              Keys({key({{"main.child.a", "main.Parent.a"}, {"main.child.b", "main.Parent.b"}}),
                    key({{"main.child.parent_id", "main.Parent.Id"}})}));
    EXPECT_EQ(reader.findForeignKeyConstraints({"main", "child"},
                                               {{"main", "child"}, {"main", "pair"}, {"", "pair"}}),
              Keys({key({{"main.child.y", ".pair.y"}, {"main.child.x", ".pair.x"}}),
                    key({{"main.child.y", "main.pair.y"}, {"main.child.x", "main.pair.x"}}),
                    key({{"main.child.boss", "main.child.id"}})}));
}
