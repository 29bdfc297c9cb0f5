#pragma once

namespace QB {

class QBLabel;

/// What a row can do: each of these goes with a label of the row and with a signal of the row's
/// class. A panel finds out by dynamic_cast. They come second in the base lists, so that the
/// address of a row stays that of its QWidget. The setters show or hide the label.

/// Signal addRowButtonClicked().
class IQBNestedListRowWidgetAddRowSupported {
public:
    virtual ~IQBNestedListRowWidgetAddRowSupported() = default;
    virtual QBLabel* addRowLabel() = 0;
    virtual void setAddRowVisible(bool isVisible);
};

/// Signal addBracketButtonClicked().
class IQBNestedListRowWidgetAddBracketSupported {
public:
    virtual ~IQBNestedListRowWidgetAddBracketSupported() = default;
    virtual QBLabel* addBracketLabel() = 0;
    virtual void setAddBracketVisible(bool isVisible);
};

/// Signal deleteButtonClicked().
class IQBNestedListRowWidgetDeleteSupported {
public:
    virtual ~IQBNestedListRowWidgetDeleteSupported() = default;
    virtual QBLabel* deleteLabel() = 0;
    virtual void setDeleteVisible(bool isVisible);
};

/// Signal aliasLabelClicked().
class IQBNestedListRowWidgetEditAliasSupported {
public:
    virtual ~IQBNestedListRowWidgetEditAliasSupported() = default;
    virtual QBLabel* aliasLabel() = 0;
    virtual void setAliasVisible(bool isVisible);
};

/// Signal negateToggleTriggered().
class IQBNestedListRowWidgetNegateSupported {
public:
    virtual ~IQBNestedListRowWidgetNegateSupported() = default;
    virtual QBLabel* negatorLabel() = 0;
    virtual void setNegateVisible(bool isVisible);
};

/// Signal logicGateLabelClicked().
class IQBNestedListRowWidgetEditLogicGateSupported {
public:
    virtual ~IQBNestedListRowWidgetEditLogicGateSupported() = default;
    virtual QBLabel* logicGateLabel() = 0;
    virtual void setLogicGateVisible(bool isVisible);
};

}  // namespace QB
