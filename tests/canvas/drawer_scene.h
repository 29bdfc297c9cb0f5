#pragma once

#include <gtest/gtest.h>

#include <set>

#include <QVBoxLayout>

#include "canvas/diagram/canvas_dump.h"
#include "canvas/diagram/diagram.h"
#include "canvas/drawer/diagram_drawer_linux.h"
#include "canvas/items/base_item_body.h"
#include "canvas/items/item.h"
#include "canvas/links/join_link.h"
#include "canvas/view/lumo_ui_view.h"
#include "model/detached_parts.h"
#include "model/element_expressions.h"
#include "model/tree_walks.h"
#include "platform/lumo/lumo_control.h"
#include "support/application.h"
#include "support/host_callbacks.h"
#include "support/window_events.h"

namespace QB::Test {

using namespace Component::SQL;
using namespace DiagramLumo;
using Source = SQLAbstractSourceComponent;
using Join = SQLJoinSourceNodeComponent;

/// A query made by hand: film JOIN lang ON film.language = lang.id, recent (SELECT 1), and the
/// free text "now()".
struct DrawnQuery {
    DrawnQuery() : statement(new SQLSelectStmtComponent) {
        film = table("film");
        lang = table("lang");
        recent->alias = "recent";
        recent->subquery = new SQLSelectStmtComponent;
        now->expression = "now()";
        now->alias = "n";
        languages->joinType = SQLJoinTypeInner;
        languages->condition = equal(film, "language", lang, "id");
        root() = joined(joined(joined(leaf(film), languages, leaf(lang)), comma(), leaf(recent)),
                        comma(), leaf(now));
    }

    static SQLIdentifierSourceComponent* table(const std::string& name) {
        auto* const made = new SQLIdentifierSourceComponent;
        made->name = name;
        return made;
    }
    static SourceNode* leaf(Source* source) { return joined(nullptr, source, nullptr); }
    static SourceNode* joined(SourceNode* left, Source* value, SourceNode* right) {
        auto* const node = new SourceNode;
        node->left = left;
        node->value = value;
        node->right = right;
        return node;
    }
    static Join* comma() {
        auto* const made = new Join;
        made->joinType = SQLJoinTypeComma;
        return made;
    }
    static SQLConditionValueComponent* value(SQLAbstractColumnComponent* column) {
        auto* const made = new SQLConditionValueComponent;
        made->values = {column};
        return made;
    }
    static SQLConditionValueComponent* field(Source* source, const std::string& name) {
        auto* const made = new SQLFieldColumnComponent;
        made->source = source;
        made->fieldName = name;
        return value(made);
    }
    static SQLCompareConditionComponent* equal(Source* a, const std::string& fieldA, Source* b,
                                               const std::string& fieldB) {
        auto* const made = new SQLCompareConditionComponent;
        made->leftValue = field(a, fieldA);
        made->rightValue = field(b, fieldB);
        return made;
    }

    SourceNode*& root() const { return statement->sourceExpr->root; }
    std::vector<const SourceNode*> nodes() const {
        std::vector<const SourceNode*> all;
        Tools::visitSourceNodes(root(), [&](const SourceNode* node) { all.push_back(node); });
        return all;
    }
    const SourceNode* nodeOf(const Source* source) const {
        for (const SourceNode* node : nodes())
            if (node->value == source) return node;
        return nullptr;
    }
    static bool holds(const SourceNode* tree, const Source* source) {
        bool found = false;
        Tools::visitSourceNodes(
            tree, [&](const SourceNode* node) { found = found || node->value == source; });
        return found;
    }
    /// "gone" for what is not in the query: it is not looked at.
    std::string nameOf(const Source* source) const {
        if (!nodeOf(source)) return source ? "gone" : "nothing";
        if (source == languages) return "languages";
        const auto* const named = dynamic_cast<const SQLIdentifierSourceComponent*>(source);
        return named && source->alias.empty() ? named->name : source->alias;
    }
    /// Frees at once what is taken out.
    static SourceNode* without(SourceNode* node, const std::vector<Source*>& removed) {
        if (!node) return nullptr;
        const bool isLeaf = !node->left && !node->right;
        node->left = without(node->left, removed);
        node->right = without(node->right, removed);
        const bool goes = isLeaf ? std::count(removed.begin(), removed.end(), node->value) > 0
                                 : !node->left || !node->right;
        if (!goes) return node;
        SourceNode* const rest = node->left ? node->left : node->right;
        node->left = node->right = nullptr;
        delete node;
        return rest;
    }
    static void removeCondition(Join* join, const SQLAbstractConditionComponent* condition) {
        SQLAbstractConditionComponent** slot = &join->condition;
        while (*slot && *slot != condition)
            slot = &(*slot)->next;
        if (!*slot) return;
        SQLAbstractConditionComponent* const gone = *slot;
        *slot = std::exchange(gone->next, nullptr);
        delete gone;
    }
    static void addCondition(Join* join, SQLAbstractConditionComponent* condition) {
        condition->next = std::exchange(join->condition, condition);
    }

    OwnedStatement statement;
    SQLIdentifierSourceComponent* film;
    SQLIdentifierSourceComponent* lang;
    SQLSubquerySourceComponent* recent = new SQLSubquerySourceComponent;
    SQLAnyExpressionSourceComponent* now = new SQLAnyExpressionSourceComponent;
    Join* languages = new Join;
};

struct ApplicationFirst {
    ApplicationFirst() { needApplication(); }
};

/// An application that has shown a menu must end before Qt puts its own things away.
struct ApplicationEnd : testing::Environment {
    void TearDown() override { application().reset(); }
};
inline testing::Environment* const applicationEnd =
    testing::AddGlobalTestEnvironment(new ApplicationEnd);

/// The drawer in a window, with a plain panel in its place: it answers from the query, does to it
/// what the canvas asks for, and tells all of it in words.
struct DrawerScene : ApplicationFirst, DrawnQuery {
    DrawerScene() {
        QWidget* widget = nullptr;
        drawer.setupDiagram(&widget, callbacks());
        auto* const layout = new QVBoxLayout(&window);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->addWidget(widget);
        window.resize(1500, 600);
        window.show();
        if (!QTest::qWaitForWindowExposed(&window)) qFatal("the window never showed");
        window.activateWindow();
        fields["film"] = {"title", "language"};
        fields["lang"] = {"id"};
        synchronise();
        finishPrompts();
        settle();
        told.clear();
    }

    QBLumoDiagramDrawer::Callbacks callbacks();
    /// What the panel does after each change.
    void synchronise() {
        needsSynchronising = false;
        std::map<long, Source*> wanted;
        for (const SourceNode* node : nodes())
            wanted[node->value->id()] = node->value;
        std::vector<std::pair<Source*, Source*>> moved;
        for (const auto& drawn : drawer.drawnComponents()) {
            const auto found = wanted.find(drawn.id);
            if (found == wanted.end())
                drawer.removeComponentFromDiagram(drawn.component);
            else if (found->second != drawn.component)
                moved.emplace_back(drawn.component, found->second);
        }
        drawer.rebindComponents(moved);
        std::set<Source*> rebound;
        for (const auto& pair : moved)
            rebound.insert(pair.second);
        for (const bool joins : {false, true})
            for (const SourceNode* node : nodes())
                if (bool(node->left) == joins && !rebound.count(node->value)) draw(node->value);
    }
    void draw(Source* component) {
        if (drawer.drawnId(component) == component->id())
            drawer.updateComponentInDiagram(component);
        else
            drawer.addComponentInDiagram(component, -1, -1);
    }
    /// The host tells of the change now, or with the next events.
    void modelChanged() {
        if (tellsAtOnce)
            synchronise();
        else
            needsSynchronising = true;
    }
    void settle() {
        for (int i = 0; i < 3; ++i) {
            QCoreApplication::processEvents();
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
            if (needsSynchronising) synchronise();
        }
    }
    /// A callback that writes down its name and what it is given.
    auto telling(const char* what) {
        return [this, what](const auto&... given) {
            told += what;
            ((told += " " + inWords(given)), ...);
            told += "; ";
        };
    }
    std::string inWords(const Source* source) const { return nameOf(source); }
    static std::string inWords(const std::string& text) { return text.empty() ? "*" : text; }
    static std::string inWords(bool on) { return on ? "on" : "off"; }
    static std::string inWords(int number) { return std::to_string(number); }
    std::string take() { return std::exchange(told, {}); }
    /// How many links light up since the last call.
    int finishPrompts() {
        const auto links = drawer.diagram()->joinLinks();
        const auto count = std::count_if(links.begin(), links.end(), [](QBLumoJoinLink* link) {
            return link->isPromptRunning();
        });
        drawer.diagram()->getAnimationTimer()->step(10);
        return int(count);
    }

    // ---- what a user does ----

    QBLumoDiagram* diagram() const { return drawer.diagram(); }
    QBLumoItem* item(const Source* source) const { return drawer.itemOf(source); }
    QBLumoBaseItemBody* body(const Source* source) const { return item(source)->getBody(); }
    QPoint inView(LumoPoint point, const LumoObject* object) const {
        const LumoPoint at =
            drawer.getContext()->translatePointToControlSpace(point, object, drawer.getControl());
        return {at.x, at.y};
    }
    /// Row -1 is the title, 0 the wildcard.
    QPoint placeOf(const Source* source, int row) const {
        if (row < 0) return inView({60, 15}, body(source));
        const LumoRect rect = body(source)->listView()->rowRect(size_t(row));
        return inView({60, rect.origin.y + 10}, body(source)->listView());
    }
    QPoint placeOf(const QBLumoJoinLink* link) const { return inView(link->midPoint(), link); }
    QBLumoJoinLink* shownLink() const {
        diagram()->layout();
        for (QBLumoJoinLink* link : diagram()->joinLinks())
            if (link->isShown()) return link;
        return nullptr;
    }
    void click(QPoint place, Qt::MouseButton button = Qt::LeftButton,
               Qt::KeyboardModifiers modifiers = {}) {
        WindowEvents::clickAt(drawer.getView()->viewport(), place, button, modifiers);
        settle();
    }
    void doubleClick(QPoint place) {
        QTest::mouseDClick(window.windowHandle(), Qt::LeftButton, {}, place);
        settle();
    }
    void key(Qt::Key key) {
        QTest::keyClick(window.windowHandle(), key);
        settle();
    }
    static QMenu* menu() { return qobject_cast<QMenu*>(QApplication::activePopupWidget()); }
    /// Opens each but the last.
    void choose(const QStringList& path) {
        for (const QString& entry : path) {
            const QWidget* const before = menu();
            WindowEvents::choose(entry);
            if (entry != path.back()) (void)QTest::qWaitFor([before] { return menu() != before; });
        }
        settle();
    }

    HostCallbacks host;
    QWidget window;
    QBLumoDiagramDrawer_LINUX drawer;
    std::map<std::string, std::vector<std::string>> fields;
    std::string told;
    bool tellsAtOnce = true;
    bool refusesRemoval = false;
    bool needsSynchronising = false;
};

inline QBLumoDiagramDrawer::Callbacks DrawerScene::callbacks() {
    QBLumoDiagramDrawer::Callbacks c;
    c.requestRemoveComponents = [this](std::vector<Source*>& sources) {
        for (Source* source : sources)
            telling("remove")(source);
        if (refusesRemoval) return;
        root() = without(root(), sources);
        modelChanged();
    };
    c.changeComponentSelection = telling("focus");
    c.findNeighbouringItemSourceComponentOfJoinComponent = [this](Join* join, Source*& left,
                                                                  Source*& right) {
        Tools::visitSourceNodes(nodeOf(join)->left, [&](const SourceNode* leaf) {
            if (!leaf->left) left = leaf->value;
        });
        for (const SourceNode* leaf = nodeOf(join)->right; leaf; leaf = leaf->left)
            right = leaf->value;
    };
    c.requestEditComponentAlias = telling("alias");
    c.requestJumpIntoSubqueryComponent = telling("enter");
    c.stringifySubqueryComponent = [](SQLSubquerySourceComponent* source) {
        const auto* const inner = static_cast<SQLSelectStmtComponent*>(source->subquery);
        return "SELECT " + inner->selectColumnExpr->selectOption + "1";
    };
    c.requestEditSubquery = telling("text");
    c.changeItemComponentFieldSelection = telling("tick");
    c.requestAddWhereComparison = telling("where");
    c.requestAddGroupByItemField = telling("group");
    c.requestAddOrderByItemField = telling("order");
    c.requestRefreshItemComponentField = [this](const std::vector<Source*>& sources, bool force) {
        for (Source* source : sources) {
            telling(force ? "reload" : "fields")(source);
            drawer.setItemFields(source, fields[nameOf(source)]);
        }
    };
    c.findParentItemComponentOfJoinConditionFieldComponent =
        [this](Join* join, std::map<SQLFieldColumnComponent*, Source*>& parents) {
            Tools::visitOwnedComponents(join, [&](const Component::AbstractQueryComponent* part) {
                const auto* const column = dynamic_cast<const SQLFieldColumnComponent*>(part);
                if (column && column->fieldName == "by the map")
                    parents[const_cast<SQLFieldColumnComponent*>(column)] = lang;
            });
        };
    c.makeJoinLinkIfNecessary = telling("link");
    c.requestEditJoin = [this](Join* join, int x, int y, bool byUser) {
        const bool isAtLink = shownLink() && placeOf(shownLink()) == QPoint(x, y);
        telling(isAtLink ? "edit" : "edit elsewhere")(join, byUser);
    };
    c.requestRemoveJoins = [this](const auto& joins) {
        for (const auto& [join, condition] : joins) {
            telling(condition ? "remove condition" : "remove join")(join);
            if (!nodeOf(join)) continue;
            removeCondition(join, condition ? condition : join->condition);
            if (!condition) join->joinType = SQLJoinTypeComma;
        }
        modelChanged();
    };
    c.checkItemComponentsSideOnJoinComponent = [this](Join* join, const auto& sources, auto& left,
                                                      auto& right) {
        for (Source* source : sources) {
            if (holds(nodeOf(join)->left, source)) left.push_back(source);
            if (holds(nodeOf(join)->right, source)) right.push_back(source);
        }
    };
    return c;
}

}  // namespace QB::Test
