// Well-known schemas in the window: each opened as a file, all of its tables added by the tree.
// What is expected comes from SQLite by queries of the test's own.
#include <QApplication>
#include <QClipboard>
#include <QRegularExpression>

#include "canvas/view/canvas_commands.h"
#include "desk/desk_fixture.h"
#include "expected_joins.h"
#include "known_database.h"

namespace QB::Test {
namespace {

/// What the links between fields compare, by the tables at their ends.
Joins linksOf(const QString& dump) {
    static const QRegularExpression link(
        R"re(^  #\d+ "(.+?)"\."(.+?)" to #\d+ "(.+?)"\."(.+?)"(:|$))re",
        QRegularExpression::MultilineOption);
    std::map<QString, std::multiset<std::string>> links;
    for (auto found = link.globalMatch(dump); found.hasNext();) {
        const QStringList end = found.next().capturedTexts();
        const QString text = end[1] + '.' + end[2] + " = " + end[3] + '.' + end[4];
        links[end[1] + '\n' + end[3]].insert(inByteOrder(text.toStdString()));
    }
    Joins joins;
    for (const auto& [tables, comparisons] : links)
        joins.insert(comparisons);
    return joins;
}

/// Of those between tables, one for each join.
int tableLinkCount(const QString& dump) {
    static const QRegularExpression link(R"re(^  #\d+ "[^"]+" to #)re",
                                         QRegularExpression::MultilineOption);
    return dump.count(link);
}

std::size_t itemCount(const QString& dump) {
    static const QRegularExpression item("^item #", QRegularExpression::MultilineOption);
    return std::size_t(dump.count(item));
}

/// A user who adds one table after the other, each when the keys of the one before have come.
class WindowUser {
public:
    bool open(const KnownDatabase& database) { return m_desk.open(database.file()); }
    void add(const Table& table, const Joins& joins) {
        ASSERT_TRUE(rowOf(QString::fromStdString(table.object)));
        const std::size_t count = itemCount(dump()) + 1;
        m_desk.doubleClick(rowOf(QString::fromStdString(table.object)));
        static_cast<void>(QTest::qWaitFor(
            [&] { return itemCount(dump()) == count && linksOf(dump()) == joins; }, 10000));
        ASSERT_EQ(itemCount(dump()), count);
        ASSERT_EQ(linksOf(dump()), joins) << dump().toStdString();
    }
    QString dump() const { return m_desk.window->builder()->canvasCommands()->dump(); }
    QString text() {
        m_desk.window->copyQuery();
        return QApplication::clipboard()->text();
    }

private:
    /// Fields may be called like it.
    QTreeWidgetItem* rowOf(const QString& table) const {
        QTreeWidgetItem* const schema = m_desk.schema();
        for (int i = 0; i < schema->childCount(); ++i)
            if (schema->child(i)->text(0) == table) return schema->child(i);
        return nullptr;
    }

    DeskFixture m_desk;
};

std::vector<Key> keysAmong(const std::vector<Key>& keys, const std::set<Table>& tables) {
    std::vector<Key> found;
    for (const Key& key : keys)
        if (tables.count(referring(key)) && tables.count(referred(key))) found.push_back(key);
    return found;
}

void addAll(const KnownDatabase& database) {
    WindowUser user;
    ASSERT_TRUE(user.open(database));
    std::set<Table> added;
    for (const Table& table : database.tables) {
        SCOPED_TRACE(table.object);
        added.insert(table);
        user.add(table, expectedJoins(keysByPair(keysAmong(database.keys, added))));
        if (testing::Test::HasFatalFailure()) return;
    }
    EXPECT_EQ(database.refusal(user.text().toStdString()), "") << user.text().toStdString();
    EXPECT_EQ(tableLinkCount(user.dump()), user.text().count(" JOIN")) << user.text().toStdString();
}

}  // namespace

TEST(WindowJoins, AreThoseOfTheKeysOnKnownSchemas) {
    const QStringList names = databasesFor(liveSQLite);
    if (names.isEmpty()) GTEST_SKIP() << "no databases in " << JOINERY_DATABASES;
    LiveConnection connection(liveSQLite);
    int count = 0;
    for (const QString& name : names) {
        SCOPED_TRACE(name.toStdString());
        const KnownDatabase database(liveSQLite, connection, name);
        if (database.keys.empty()) continue;
        addAll(database);
        ++count;
    }
    std::cout << count << " schemas with keys\n";
    EXPECT_GE(count, 20);
}

}  // namespace QB::Test

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
