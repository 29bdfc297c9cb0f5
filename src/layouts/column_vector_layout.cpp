#include "layouts/column_vector_layout.h"

namespace QB::QBComponentsListLayout_Private {

ColumnVectorLayout::~QBComponentsListLayoutImpl() = default;

bool ColumnVectorLayout::elementsEqual(Column* a, Column* b) const {
    return a == b;
}

ColumnVectorLayout::Column* ColumnVectorLayout::elementFromComponent(
    Component::AbstractQueryComponent* component) const {
    return dynamic_cast<Column*>(component);
}

Component::AbstractQueryComponent* ColumnVectorLayout::componentFromElement(Column* element) const {
    return element;
}

}  // namespace QB::QBComponentsListLayout_Private
