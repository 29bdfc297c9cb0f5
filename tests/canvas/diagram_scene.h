#pragma once

#include <map>
#include <string>

#include "canvas/links/join_link.h"
#include "canvas/links/join_link_adaptor.h"
#include "item_scene.h"

namespace QB::DiagramLumo {

/// Three tables in a row, and what the diagram tells: "+a" and "-a" for selections, and more.
struct DiagramScene : ItemScene {
    DiagramScene() {
        const std::vector<std::string> fields = {"id", "name", "other"};
        for (int i = 0; i < 3; ++i) {
            const std::string title(1, char('a' + i));
            bodies[title] = table(title, {100 + 400 * i, 100}, fields);
        }
        listen();
    }

    void listen() {
        context.setItemSelectionChanged([this](QBLumoItem* item, bool selected) {
            told += (selected ? " +" : " -") + nameOf(item);
        });
        context.setItemsWillBeDeleted([this](const auto& items) {
            told += " delete";
            for (QBLumoItem* item : items)
                told += ' ' + nameOf(item);
        });
        context.setJoinLinksWillBeDeleted(
            [this](const auto& links) { told += " links " + std::to_string(links.size()); });
        context.setFieldLinkDrawn([this](QBLumoItem* from, const std::string& field, QBLumoItem* to,
                                         const std::string& toField) {
            told += ' ' + nameOf(from) + '.' + field + '=' + nameOf(to) + '.' + toField;
        });
        context.setItemBodyDoubleClicked(
            [this](QBLumoBaseItemBody* body) { told += " open " + nameOf(body->item()); });
        context.setJoinLinkDoubleClicked([this](QBLumoJoinLink*, bool) { told += " open link"; });
        context.setDiagramEmptinessChanged(
            [this](bool empty) { told += empty ? " empty" : " filled"; });
        context.setItemAliasWanted([this](QBLumoItem* item) { told += " alias " + nameOf(item); });
    }

    static std::string nameOf(const QBLumoItem* item) { return item->getBody()->titleText(); }
    QBLumoItem* item(const std::string& name) { return bodies.at(name)->item(); }
    QBLumoJoinLink* tableLink(const std::string& from, const std::string& to) {
        auto* const link = new QBLumoJoinLink;
        link->setJoinType(2);
        diagram.addChild(link, 0);
        link->setTableAdaptors(item(from)->getAdaptor(), item(to)->getAdaptor());
        diagram.layout();
        return link;
    }
    QBLumoJoinLink* fieldLink(const std::string& from, const std::string& to) {
        auto* const link = new QBLumoJoinLink;
        link->setJoinType(3);
        diagram.addChild(link, 0);
        link->addFieldAdaptors(bodies.at(from)->adaptorForField("id"),
                               bodies.at(to)->adaptorForField("name"));
        diagram.layout();
        return link;
    }
    /// What was told since the last call.
    std::string take() { return std::exchange(told, {}); }
    std::string selected() const {
        std::string names;
        for (const QBLumoItem* each : diagram.selectedItems())
            names += nameOf(each);
        return names + std::string(diagram.selectedJoinLinks().size(), '*');
    }
    /// True if the key was taken.
    bool key(int32_t code, int32_t keys = 0) { return control.dispatcher()->keyDown(code, keys); }
    const RightClickBlock* lastMenu() const {
        return static_cast<const RightClickBlock*>(control.rightClicks.back().get());
    }

    std::map<std::string, QBLumoBaseItemBody*> bodies;
    std::string told;
};

inline std::string text(const LumoRect& rect) {
    return std::to_string(rect.origin.x) + "," + std::to_string(rect.origin.y) + " " +
           std::to_string(rect.size.width) + "x" + std::to_string(rect.size.height);
}

}  // namespace QB::DiagramLumo
