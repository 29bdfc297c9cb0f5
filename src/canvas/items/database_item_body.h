#pragma once

#include "canvas/items/base_item_body.h"

namespace QB::DiagramLumo {

/// A table or view: name, alias and fields. As high as its fields need, until the user resizes it.
class QBLumoDatabaseItemBody : public QBLumoBaseItemBody {
public:
    QBLumoDatabaseItemBody();

    const std::string& getTableName() const { return m_tableName; }
    void setTableName(const std::string& name);
    const std::string& getSchema() const { return m_schema; }
    void setSchema(const std::string& schema);
    /// Dashes of the border, in widths of the line; empty for a solid one.
    void setLineDash(std::vector<double> dash);

protected:
    TitleText title() const override;
    const std::vector<double>& borderDash() const override;
    void fieldsChanged() override;

private:
    std::string m_tableName;
    std::string m_schema;
    std::vector<double> m_lineDash;
};

}  // namespace QB::DiagramLumo
