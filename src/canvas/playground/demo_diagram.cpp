#include "canvas/playground/demo_diagram.h"

#include <algorithm>
#include <cmath>
#include <random>
#include <set>

#include "canvas/diagram/diagram.h"
#include "canvas/items/database_item_body.h"
#include "canvas/items/item.h"
#include "canvas/items/item_geometry.h"
#include "canvas/items/text_based_item_body.h"
#include "canvas/links/join_link.h"
#include "canvas/links/join_link_adaptor.h"

namespace QB::DiagramLumo {

namespace {

constexpr int columnWidth = 320;
constexpr int rowHeight = 300;
constexpr int jitter = 40;
constexpr int canvasMargin = 40;
constexpr int textEvery = 17;  // every so many items is a subquery
constexpr int joinTypes[] = {2, 3, 4, 2, 6, 0, 5, 3};

const char* const subjects[] = {"customer", "order",   "product", "invoice",  "payment", "store",
                                "employee", "address", "country", "category", "film",    "actor"};
const char* const fields[] = {"id",       "name",    "created_at", "amount", "status",
                              "owner_id", "comment", "quantity",   "price",  "parent_id"};

using Dice = std::mt19937;

int roll(Dice* dice, int sides) {
    return int((*dice)() % unsigned(sides));
}

std::vector<std::string> demoFields(int count) {
    std::vector<std::string> names;
    for (int i = 0; i < count; ++i) {
        std::string name = fields[size_t(i) % std::size(fields)];
        if (i >= int(std::size(fields))) name += "_" + std::to_string(i);
        names.push_back(std::move(name));
    }
    return names;
}

QBLumoBaseItemBody* makeText(int index) {
    auto* const body = new QBLumoTextBasedItemBody;
    body->setText("SELECT id, count(*) AS number\nFROM orders\nWHERE status = 'open'\nGROUP BY id");
    body->setAlias("sub" + std::to_string(index));
    body->setEditButtonHandler([](QBLumoTextBasedItemBody*) {});
    const LumoSize size = defaultTextBodySize();
    body->setRect({0, 0, size.width, size.height});
    body->setFields({"id", "number"});
    return body;
}

QBLumoBaseItemBody* makeTable(int index, int fieldCount, Dice* dice) {
    auto* const body = new QBLumoDatabaseItemBody;
    body->setTableName(subjects[size_t(index) % std::size(subjects)] + std::string("_") +
                       std::to_string(index));
    if (roll(dice, 4) == 0) body->setAlias("t" + std::to_string(index));
    const std::vector<std::string> names =
        demoFields(fieldCount > 0 ? fieldCount : 3 + roll(dice, 12));
    body->setRect({0, 0, defaultTableBodySize().width, tableBodyHeightFor(int(names.size()))});
    body->setFields(names);
    if (roll(dice, 3) == 0) body->setFieldSelected(names.front(), true);
    return body;
}

LumoPoint gridPlace(int index, int columns, Dice* dice) {
    return {canvasMargin + (index % columns) * columnWidth + roll(dice, jitter),
            canvasMargin + (index / columns) * rowHeight + roll(dice, jitter)};
}

const std::string& anyField(QBLumoItem* item, Dice* dice) {
    const auto& names = item->getBody()->fieldNames();
    return names[size_t(roll(dice, int(names.size())))];
}

/// Mostly one close by, as in a real schema; never @p index itself.
int neighbourOf(int index, int items, int columns, Dice* dice) {
    const int distance =
        roll(dice, 10) == 0 ? 1 + roll(dice, items - 1) : (roll(dice, 2) == 0 ? 1 : columns);
    const int neighbour = (index + distance) % items;
    return neighbour == index ? (index + 1) % items : neighbour;
}

/// Two items without a link between them, unless few are left.
std::pair<int, int> freshPair(int items, int columns, std::set<std::pair<int, int>>* linked,
                              Dice* dice) {
    constexpr int tries = 20;
    std::pair<int, int> pair;
    for (int i = 0; i < tries; ++i) {
        pair.first = roll(dice, items);
        pair.second = neighbourOf(pair.first, items, columns, dice);
        if (linked->insert(std::minmax(pair.first, pair.second)).second) break;
    }
    return pair;
}

QBLumoJoinLink* newLink(QBLumoDiagram* diagram, int joinType) {
    auto* const link = new QBLumoJoinLink;
    link->setJoinType(joinType);
    if (joinType == 0) link->setLabel(">=");
    diagram->addChild(link, 0);  // below the items
    return link;
}

}  // namespace

QBLumoJoinLink* addDemoLink(QBLumoDiagram* diagram, QBLumoItem* left, const std::string& leftField,
                            QBLumoItem* right, const std::string& rightField, int joinType) {
    QBLumoJoinLink* const tableLink = newLink(diagram, joinType);
    tableLink->setTableAdaptors(left->getAdaptor(), right->getAdaptor());
    QBLumoJoinLink* const fieldLink = newLink(diagram, joinType);
    fieldLink->addFieldAdaptors(left->getBody()->adaptorForField(leftField),
                                right->getBody()->adaptorForField(rightField));
    return diagram->getRelationMode() == TableRelation ? tableLink : fieldLink;
}

void fillDemoDiagram(QBLumoDiagram* diagram, int items, int links, int fieldCount) {
    Dice dice(42);
    const int columns = std::max(1, int(std::sqrt(double(items) * 1.6)));
    const int rows = (items + columns - 1) / columns;
    diagram->setRect({0, 0, std::max(3000, columns * columnWidth + 2 * canvasMargin),
                      std::max(1600, rows * rowHeight + 2 * canvasMargin)});
    std::vector<QBLumoItem*> made;
    for (int i = 0; i < items; ++i) {
        auto* const item = new QBLumoItem;
        item->setBody(i % textEvery == textEvery - 1 ? makeText(i)
                                                     : makeTable(i, fieldCount, &dice));
        item->setRect({gridPlace(i, columns, &dice), item->getRect().size});
        diagram->addChild(item);
        made.push_back(item);
    }
    if (items < 2) return;
    std::set<std::pair<int, int>> linked;
    for (int i = 0; i < links; ++i) {
        const auto [left, right] = freshPair(items, columns, &linked, &dice);
        addDemoLink(diagram, made[size_t(left)], anyField(made[size_t(left)], &dice),
                    made[size_t(right)], anyField(made[size_t(right)], &dice),
                    joinTypes[size_t(i) % std::size(joinTypes)]);
    }
}

}  // namespace QB::DiagramLumo
