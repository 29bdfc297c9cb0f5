#include "tools/foreign_key_joins.h"

#include <gtest/gtest.h>

#include <QStringList>
#include <future>
#include <stdexcept>

#include "engine/engine_core.h"
#include "support/from_clause.h"
#include "support/host_callbacks.h"
#include "support/owned_engine.h"

namespace QB::Test {

using namespace Component::SQL;
using namespace Tools::SQL;

namespace {

using Source = SQLIdentifierSourceComponent;
using Keys = std::vector<QBForeignKeyConstraint>;

/// "film(a,b)>language(x,y)": the referencing table and its fields first, all in the schema "s"
/// unless they say "t.film". Several keys stand with blanks between them.
Keys readKeys(const char* text) {
    Keys keys;
    for (const QString& word : QString(text).split(' ', Qt::SkipEmptyParts)) {
        const QStringList ends = word.split('>');
        const auto fieldsOf = [](const QString& end) {
            const QStringList path = end.section('(', 0, 0).split('.');
            std::vector<QBIdentifierFieldPath> fields;
            for (const QString& field : end.section('(', 1).chopped(1).split(','))
                fields.push_back({path.size() > 1 ? path[0].toStdString() : "s",
                                  path.back().toStdString(), field.toStdString()});
            return fields;
        };
        const auto from = fieldsOf(ends[0]);
        const auto to = fieldsOf(ends[1]);
        auto& key = keys.emplace_back();
        for (std::size_t i = 0; i < from.size(); ++i)
            key.emplace_back(from[i], to[i]);
    }
    return keys;
}

std::string writeKeys(const Keys& keys) {
    std::string text;
    for (const QBForeignKeyConstraint& key : keys) {
        std::string from;
        std::string to;
        for (const auto& [own, referenced] : key) {
            from += (from.empty() ? "" : ",") + own.field;
            to += (to.empty() ? "" : ",") + referenced.field;
        }
        text += (text.empty() ? "" : " ") + key[0].first.object + "(" + from + ")>" +
                key[0].second.object + "(" + to + ")";
    }
    return text;
}

class ForeignKeyJoins : public testing::Test {
protected:
    ForeignKeyJoins() : m_engine(DatabaseTypePostgreSQL) {
        // A worker of a host catches what its functions throw.
        static decltype(Callback::runOperationOnDispatchedThread) dispatch;
        dispatch = Callback::runOperationOnDispatchedThread;
        Callback::runOperationOnDispatchedThread = [](std::function<void()> work) {
            dispatch([work = std::move(work)] {
                try {
                    work();
                } catch (const std::runtime_error&) {
                }
            });
        };
    }

    /// The host gives them all, whatever it is asked for.
    void knowKeys(const char* text) {
        m_engine->registerForeignKeyConstraintSearcher(
            [this, keys = readKeys(text)](const auto&, const auto&) {
                if (m_isAsked) m_isAsked->set_value();
                if (m_isFailing) throw std::runtime_error("server gone");
                return keys;
            });
    }

    /// "film", "film f", "t.film"; ".film" has no path.
    Source* add(const QString& text) {
        const QString name = text.section(' ', 0, 0);
        std::vector<std::string> path = {"s"};
        if (name.contains('.')) path.clear();
        if (name.indexOf('.') > 0) path = {"db", name.section('.', 0, 0).toStdString()};
        return addTable(m_engine.get(), path, name.section('.', -1).toStdString(),
                        text.section(' ', 1).toStdString());
    }

    /// Adds tables as a user does, one after the other, each of them with the links it proposes.
    Source* addAll(const char* tables) {
        Source* last = nullptr;
        for (const QString& table : QString(tables).split(", ")) {
            last = add(table);
            makeJoinLinkByForeignKeyIfNecessary(m_engine.get(), this, last);
            m_host.finishWorkers();
        }
        return last;
    }

    /// The joins of the FROM clause, one after the other, "," for one without condition.
    std::string joins() const {
        const auto* select =
            dynamic_cast<SQLSelectStmtComponent*>(m_engine->topLevelQueryComponent(0));
        QStringList texts;
        for (const auto& comparisons : joinTexts(select->sourceExpr->root)) {
            QStringList parts;
            for (const std::string& text : comparisons)
                parts << QString::fromStdString(text).remove(' ');
            texts << (parts.isEmpty() ? "," : parts.join('&'));
        }
        return texts.join(' ').toStdString();
    }

    /// What a menu for @p source would offer, as "a.x=b.y&a.z=b.w"; "-" if no answer came.
    std::string offered(Source* source) {
        std::string text = "-";
        findForeignKeyJoins(m_engine.get(), source, [&text](const auto& found) {
            text.clear();
            for (const ForeignKeyJoin& join : found) {
                if (!text.empty()) text += ' ';
                for (const auto& [own, other] : join.fields)
                    text += (&own == &join.fields[0].first ? "" : "&") + shownName(join.source) +
                            "." + own + "=" + shownName(join.foreign) + "." + other;
            }
        });
        m_host.finishWorkers();
        return text;
    }

    HostCallbacks m_host;
    OwnedEngine<> m_engine;
    std::promise<void>* m_isAsked = nullptr;  // not owned
    bool m_isFailing = false;
};

}  // namespace

TEST_F(ForeignKeyJoins, PairsOfAHostThatDoesNotTellKeysApartAreGrouped) {
    const struct {
        const char* keys;  ///< whose pairs the host gives
        const char* grouped;
    } cases[] = {
        {"", ""},
        {"film(language_id)>language(id) film(original)>language(id)",
         "film(language_id)>language(id) film(original)>language(id)"},
        {"a(q,p)>b(x,y)", "a(p,q)>b(y,x)"},
        {"a(p,q)>b(x,y) a(r,s)>b(x,y)", "a(p,q)>b(x,y) a(r,s)>b(x,y)"},
        {"a(p)>b(x) a(p)>c(x) b(p)>a(x)", "a(p)>b(x) a(p)>c(x) b(p)>a(x)"},
        {"a(p)>b(x) a(p)>b(y)", "a(p)>b(x) a(p)>b(y)"},
        {"a(p)>t.b(x) a(q)>b(y)", "a(p)>b(x) a(q)>b(y)"},
        {"a(boss)>a(id)", "a(boss)>a(id)"},
    };
    for (const auto& example : cases) {
        m_engine->registerForeignKeySearcher([&](const auto&, const auto&) {
            QBForeignKeys pairs;
            for (const auto& key : readKeys(example.keys))
                pairs.insert(key.begin(), key.end());
            return pairs;
        });
        EXPECT_EQ(writeKeys(m_engine->triggerForeignKeyConstraintSearcher({}, {})),
                  example.grouped);
    }
    // One that does tells all: each key once, in order, the pairs as they come.
    m_engine->registerForeignKeyConstraintSearcher([](const auto&, const auto&) {
        Keys keys = readKeys("b(p)>a(x) a(q,p)>b(x,y) b(p)>a(x) a(boss)>b(x)");
        keys.emplace_back();
        return keys;
    });
    EXPECT_EQ(writeKeys(m_engine->triggerForeignKeyConstraintSearcher({}, {})),
              "a(boss)>b(x) a(q,p)>b(x,y) b(p)>a(x)");
}

TEST_F(ForeignKeyJoins, TablesProposeTheLinksThatAUserWouldDraw) {
    const struct {
        const char* keys;
        const char* tables;  ///< added one after the other
        const char* joins;
        const char* offer;  ///< for the last table
    } cases[] = {
        // Two keys between two tables: the first one, the others in the menu; either order.
        {"film(original)>language(id) film(language_id)>language(id)", "film, language",
         "film.language_id=language.id", "language.id=film.language_id language.id=film.original"},
        {"film(original)>language(id) film(language_id)>language(id)", "language, film",
         "language.id=film.language_id", "film.language_id=language.id film.original=language.id"},
        {"store(manager)>staff(id) staff(store)>store(id)", "store, staff", "store.id=staff.store",
         "staff.store=store.id staff.id=store.manager"},
        // A composite key is one link.
        {"room(floor,code)>block(f,c)", "block, room", "block.f=room.floor&block.c=room.code",
         "room.floor=block.f&room.code=block.c"},
        // Self references and other sources of the table are no partners.
        {"person(boss)>person(id)", "person, person b", ",", ""},
        // Two aliases of the other table have a link each, by keys of their own where there are.
        {"flight(origin)>port(id) flight(dest)>port(id)", "port p, port q, flight",
         "p.id=flight.dest flight.origin=q.id",
         "flight.dest=p.id flight.origin=p.id flight.dest=q.id flight.origin=q.id"},
        {"flight(origin)>port(id) flight(dest)>port(id)", "flight, port p, port q, port r",
         "flight.dest=p.id flight.origin=q.id flight.dest=r.id",
         "r.id=flight.dest r.id=flight.origin"},
        {"visit(day)>day(id)", "day d, day e, visit", "d.id=visit.day visit.day=e.id",
         "visit.day=d.id visit.day=e.id"},
        // A table that is added twice proposes each key once.
        {"film(lang)>language(id)", "film, language, film g",
         "film.lang=language.id language.id=g.lang", "g.lang=language.id"},
        {"film(lang)>language(id) film(first)>language(id)", "film, language, film g",
         "film.first=language.id language.id=g.first", "g.first=language.id g.lang=language.id"},
        // The same name in another schema is another table.
        {"t.film(lang)>language(id)", "film, language, t.film g", ", language.id=g.lang",
         "g.lang=language.id"},
        // A source without a path proposes nothing, and nothing is proposed for it.
        {"film(lang)>language(id)", ".film, language", ",", ""},
        {"film(lang)>language(id)", "language, .film", ",", "-"},
        // Tables that no key connects.
        {"a(p)>b(x)", "a, c", ",", ""},
        {"", "a", "", ""},
    };
    for (const auto& example : cases) {
        emptyFromClause(m_engine.get());
        knowKeys(example.keys);
        Source* const last = addAll(example.tables);
        EXPECT_EQ(joins(), example.joins) << example.tables << " with " << example.keys;
        EXPECT_EQ(offered(last), example.offer) << example.tables << " with " << example.keys;
    }
}

TEST_F(ForeignKeyJoins, WhatIsLinkedAlreadyIsNotLinkedTwice) {
    knowKeys("film(lang)>language(id) film(original)>language(id) film(country)>country(id)");
    Source* const film = add("film");
    Source* const language = add("language");
    Source* const country = add("country");
    // Tables that are dropped together find each other.
    for (Source* source : {film, language, country})
        makeJoinLinkByForeignKeyIfNecessary(m_engine.get(), this, source);
    m_host.finishWorkers();
    const std::string linked = joins();
    EXPECT_NE(linked.find("film.lang=language.id"), std::string::npos) << linked;
    EXPECT_EQ(std::count(linked.begin(), linked.end(), '='), 2) << linked;
    // The menu makes the key that is not there yet.
    for (int time = 0; time < 2; ++time) {
        findForeignKeyJoins(m_engine.get(), film, [this](const auto& found) {
            makeJoinLinksByForeignKeys(m_engine.get(), this, found);
        });
        m_host.finishWorkers();
        const std::string all = joins();
        EXPECT_EQ(std::count(all.begin(), all.end(), '='), 3) << all;
    }
    // A link that the user has drawn by another key stands for the first one.
    emptyFromClause(m_engine.get());
    Source* const other = add("film");
    makeJoinLinkIfNecessary(m_engine.get(), this, other, "original", add("language"), "id");
    makeJoinLinkByForeignKeyIfNecessary(m_engine.get(), this, other);
    m_host.finishWorkers();
    EXPECT_EQ(joins(), "film.original=language.id");
}

TEST_F(ForeignKeyJoins, WhateverHappensDuringTheSearchNothingIsLostAndNothingHangs) {
    knowKeys("film(lang)>language(id)");
    // The search has read the statement; its answer comes after @p meanwhile.
    const auto search = [this](const std::function<void()>& meanwhile) {
        emptyFromClause(m_engine.get());
        add("language");
        std::promise<void> isAsked;
        m_isAsked = &isAsked;
        Source* const film = add("film");
        makeJoinLinkByForeignKeyIfNecessary(m_engine.get(), this, film);
        isAsked.get_future().wait();
        m_isAsked = nullptr;
        meanwhile();
        m_host.finishWorkers();
    };
    const auto pushLayer = [this] {
        m_engine->pushNewLayerTopLevelQueryComponent(m_engine->topLevelQueryComponent(0), "sub");
    };
    search([] {});
    EXPECT_EQ(joins(), "language.id=film.lang");
    // Other sources, maybe at the same addresses.
    search([this] {
        emptyFromClause(m_engine.get());
        add("language");
        add("film");
    });
    EXPECT_EQ(joins(), ",");
    // Another layer, in which the sources do not stand; one that was left again.
    SQLSelectStmtComponent subquery;
    search([&] { m_engine->pushNewLayerTopLevelQueryComponent(&subquery, "sub"); });
    EXPECT_EQ(joins(), ",");
    EXPECT_FALSE(subquery.sourceExpr->root);
    m_engine->popCurrentLayerTopLevelQueryComponent();
    search([&] {
        pushLayer();
        m_engine->popCurrentLayerTopLevelQueryComponent();
    });
    EXPECT_EQ(joins(), "language.id=film.lang");
    search([this] { m_engine->setDatabaseInfo(DatabaseTypeSQLite, 1); });
    EXPECT_EQ(joins(), "");
    m_isFailing = true;
    search([] {});
    EXPECT_EQ(joins(), ",");
    EXPECT_EQ(offered(add("film g")), "");  // an answer comes all the same
    const auto core = m_engine->core();
    search([this] { m_engine.destroy(); });
    const std::unique_lock lock(core->queryComponentAccessMutex, std::try_to_lock);
    EXPECT_TRUE(lock.owns_lock());
}

TEST_F(ForeignKeyJoins, ALinkThatEndsTheEngineIsTheLast) {
    knowKeys("a(p)>b(x) a(p)>c(x)");
    add("b");
    add("c");
    Source* const a = add("a");
    m_engine->registerNotifyChangeListener(
        "TopLevelQueryComponentElementModifiedNotification",
        [this](const std::string&, const QBNotificationParameters*) { m_engine.destroy(); });
    makeJoinLinkByForeignKeyIfNecessary(m_engine.get(), this, a);
    m_host.finishWorkers();
    EXPECT_FALSE(m_engine.get());
}

}  // namespace QB::Test
