#include "rows/row_interfaces.h"

#include "widgets/label.h"

namespace QB {

void IQBNestedListRowWidgetAddRowSupported::setAddRowVisible(bool isVisible) {
    addRowLabel()->setVisible(isVisible);
}

void IQBNestedListRowWidgetAddBracketSupported::setAddBracketVisible(bool isVisible) {
    addBracketLabel()->setVisible(isVisible);
}

void IQBNestedListRowWidgetDeleteSupported::setDeleteVisible(bool isVisible) {
    deleteLabel()->setVisible(isVisible);
}

void IQBNestedListRowWidgetEditAliasSupported::setAliasVisible(bool isVisible) {
    aliasLabel()->setVisible(isVisible);
}

void IQBNestedListRowWidgetNegateSupported::setNegateVisible(bool isVisible) {
    negatorLabel()->setVisible(isVisible);
}

void IQBNestedListRowWidgetEditLogicGateSupported::setLogicGateVisible(bool isVisible) {
    logicGateLabel()->setVisible(isVisible);
}

}  // namespace QB
