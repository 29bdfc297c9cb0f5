#pragma once

#include "canvas/items/base_item_body.h"

namespace QB::DiagramLumo {

/// A table or view: name, alias and fields.
class QBLumoDatabaseItemBody : public QBLumoBaseItemBody {
public:
    QBLumoDatabaseItemBody();

    const std::string& getTableName() const { return m_tableName; }
    void setTableName(const std::string& name);
    const std::string& getSchema() const { return m_schema; }
    void setSchema(const std::string& schema);

    std::string titleText() const override;
    bool isTitleElided() const override;
    void paint(LumoPaintConfig* config, LumoRect rect) override;
    void themeChanged() override;

private:
    std::string m_tableName;
    std::string m_schema;
    LumoColor m_titleColor;
    LumoColor m_bodyColor;
    LumoColor m_selectedTitleColor;
    LumoColor m_selectedBodyColor;
    LumoColor m_titleTextColor;
    std::vector<double> m_lineDash;
};

}  // namespace QB::DiagramLumo
