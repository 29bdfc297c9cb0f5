#pragma once

namespace QB {

namespace Component::SQL {
class SQLAbstractConditionComponent;
}

/// What the diagram needs of the panel of the WHERE clause: to leave a condition unmarked while
/// the user has not finished it. The panel implements it; the frame finds it by dynamic_cast.
class IQBInvalidExcluder {
public:
    virtual ~IQBInvalidExcluder() = default;

    /// @p componentRef is the slot of the condition in the statement, never null.
    virtual void excludeInvalidComponent(
        Component::SQL::SQLAbstractConditionComponent** componentRef) = 0;
};

}  // namespace QB
