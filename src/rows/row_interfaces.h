#pragma once

namespace QB {

class QBLabel;

/// What a row can do: each of these goes with a label of the row and with a signal of the row's
/// class. A panel finds out by dynamic_cast. They come second in the base lists, so that the
/// address of a row stays that of its QWidget.

/// Signal addRowButtonClicked().
class IQBNestedListRowWidgetAddRowSupported {
public:
    virtual ~IQBNestedListRowWidgetAddRowSupported() = default;
    virtual QBLabel* addRowLabel() = 0;
    virtual void setAddRowVisible(bool isVisible) = 0;
};

/// Signal addBracketButtonClicked().
class IQBNestedListRowWidgetAddBracketSupported {
public:
    virtual ~IQBNestedListRowWidgetAddBracketSupported() = default;
    virtual QBLabel* addBracketLabel() = 0;
    virtual void setAddBracketVisible(bool isVisible) = 0;
};

/// Signal deleteButtonClicked().
class IQBNestedListRowWidgetDeleteSupported {
public:
    virtual ~IQBNestedListRowWidgetDeleteSupported() = default;
    virtual QBLabel* deleteLabel() = 0;
    virtual void setDeleteVisible(bool isVisible) = 0;
};

/// Signal aliasLabelClicked().
class IQBNestedListRowWidgetEditAliasSupported {
public:
    virtual ~IQBNestedListRowWidgetEditAliasSupported() = default;
    virtual QBLabel* aliasLabel() = 0;
    virtual void setAliasVisible(bool isVisible) = 0;
};

/// Signal negateToggleTriggered().
class IQBNestedListRowWidgetNegateSupported {
public:
    virtual ~IQBNestedListRowWidgetNegateSupported() = default;
    virtual QBLabel* negatorLabel() = 0;
    virtual void setNegateVisible(bool isVisible) = 0;
};

/// Signal logicGateLabelClicked().
class IQBNestedListRowWidgetEditLogicGateSupported {
public:
    virtual ~IQBNestedListRowWidgetEditLogicGateSupported() = default;
    virtual QBLabel* logicGateLabel() = 0;
    virtual void setLogicGateVisible(bool isVisible) = 0;
};

}  // namespace QB
