// The layout of schemas of real databases. What dot (Graphviz 2.43) reaches stands beside each: the
// crossings of our lines at its places, and those of its own lines, straight or curved.
#include <gtest/gtest.h>

#include <QFile>
#include <QRegularExpression>
#include <algorithm>

#include "canvas/diagram/auto_layout.h"

namespace QB::DiagramLumo {
namespace {

/// What was read of each script, so that a misreading shows, and the crossings that we reached.
struct Schema {
    const char* script;
    int tables;
    int links;
    int atMost;
};

/// All schemas in which dot lets links cross, then those with the most independent cycles of links.
const Schema schemas[] = {
    {"adventureworks/postgresql.sql", 68, 86, 17},              // 76, 54
    {"imdb/schema.sql", 21, 23, 0},                             // 21, 9
    {"mywind/mysql.sql", 20, 21, 0},                            // 5, 4
    {"sakila/postgresql.sql", 21, 38, 24},                      // 48, 36
    {"sakila/sqlite.sql", 16, 20, 1},                           // 3, 1
    {"spider_assets_maintenance/sqlite.sql", 14, 18, 0},        // 4, 3
    {"spider_behavior_monitoring/mysql.sql", 11, 13, 0},        // 1, 1
    {"spider_college_1/mysql.sql", 7, 9, 0},                    // 1, 0
    {"spider_college_3/sqlite.sql", 8, 9, 0},                   // 2, 1
    {"spider_cre_Drama_Workshop_Groups/mysql.sql", 18, 24, 0},  // 1, 1
    {"spider_e_government/sqlite.sql", 10, 9, 0},               // 1, 1
    {"spider_hospital_1/sqlite.sql", 15, 23, 2},                // 10, 5
    {"spider_insurance_and_eClaims/sqlite.sql", 7, 6, 0},       // 1, 1
    {"spider_program_share/mysql.sql", 4, 4, 0},                // 1, 1
    {"spider_shop_membership/mysql.sql", 4, 4, 0},              // 1, 1
    {"spider_customers_and_invoices/sqlite.sql", 9, 11, 0},     // 0, 0
    {"spider_cre_Doc_Tracking_DB/sqlite.sql", 8, 9, 0},         // 1, 0
    {"spider_hr_1/mysql.sql", 7, 7, 0},                         // 0, 0
    {"spider_department_store/sqlite.sql", 14, 13, 0},          // 0, 0
    {"tpch/schema.sql", 8, 8, 0},                               // 0, 0
    {"gms_mydb/mysql.sql", 82, 8, 0},                           // 0, 0
};

QString readScript(const char* script) {
    QFile file(QStringLiteral(JOINERY_DATABASES "/") + QString::fromLatin1(script));
    if (!file.open(QIODevice::ReadOnly)) return {};
    static const QRegularExpression comments(QStringLiteral("--[^\n]*|/\\*.*?\\*/"),
                                             QRegularExpression::DotMatchesEverythingOption);
    return QString::fromUtf8(file.readAll()).remove(comments);
}

/// Between the bracket that ends before @p begin and its partner: how many commas separate.
int entriesFrom(const QString& text, int begin) {
    int depth = 1;
    int entries = 1;
    for (int i = begin; i < text.size() && depth > 0; ++i) {
        if (text[i] == '(') ++depth;
        if (text[i] == ')') --depth;
        if (text[i] == ',' && depth == 1) ++entries;
    }
    return entries;
}

/// The last part of a qualified name, without quotes.
QString plainName(const QString& name) {
    static const QRegularExpression quotes(QStringLiteral("[`\"\\[\\]]"));
    return name.section('.', -1).remove(quotes).toLower();
}

/// Tables as high as their fields and constraints ask for, and links from foreign keys, which all
/// three dialects write alike.
LayoutGraph readSchema(const QString& text) {
    const QString name =
        QStringLiteral("((?:[`\"\\[]?\\w+[`\"\\]]?\\.)?(?:`[^`]+`|\"[^\"]+\"|\\w+))");
    const QRegularExpression words(
        QStringLiteral("create\\s+table\\s+(?:if\\s+not\\s+exists\\s+)?%1\\s*\\(|"
                       "alter\\s+table\\s+(?:only\\s+)?%1|references\\s+%1")
            .arg(name),
        QRegularExpression::CaseInsensitiveOption);
    LayoutGraph graph;
    QStringList tables;
    std::vector<std::pair<QString, QString>> keys;
    QString table;
    for (auto found = words.globalMatch(text); found.hasNext();) {
        const QRegularExpressionMatch match = found.next();
        if (!match.captured(3).isEmpty()) {
            keys.emplace_back(table, plainName(match.captured(3)));
            continue;
        }
        table = plainName(match.captured(match.captured(1).isEmpty() ? 2 : 1));
        if (match.captured(1).isEmpty() || tables.contains(table)) continue;
        tables.append(table);
        const int rows = std::clamp(entriesFrom(text, match.capturedEnd()), 3, 10);
        graph.boxes.push_back({218, 38 + 20 * rows});
    }
    for (const auto& [from, to] : keys)
        graph.edges.push_back({tables.indexOf(from), tables.indexOf(to)});
    return graph;
}

/// Links that stand, each once.
std::vector<LayoutGraph::Edge> distinctEdges(const LayoutGraph& graph) {
    std::vector<LayoutGraph::Edge> edges;
    for (const LayoutGraph::Edge& edge : graph.edges) {
        const bool isKnown = std::any_of(edges.begin(), edges.end(), [&](const auto& other) {
            return std::minmax(edge.from, edge.to) == std::minmax(other.from, other.to);
        });
        if (edge.from >= 0 && edge.to >= 0 && edge.from != edge.to && !isKnown)
            edges.push_back(edge);
    }
    return edges;
}

TEST(AutoLayoutOfSchemas, CrossesNoMoreThanWhatWasReached) {
    if (!QFile::exists(QStringLiteral(JOINERY_DATABASES)))
        GTEST_SKIP() << "no " JOINERY_DATABASES ": the layouts of known schemas are not tested";
    for (const Schema& schema : schemas) {
        const LayoutGraph graph = readSchema(readScript(schema.script));
        EXPECT_EQ(int(graph.boxes.size()), schema.tables) << schema.script;
        EXPECT_EQ(int(distinctEdges(graph).size()), schema.links) << schema.script;
        EXPECT_LE(countCrossings(graph, layoutInLayers(graph)), schema.atMost) << schema.script;
    }
}

}  // namespace
}  // namespace QB::DiagramLumo
