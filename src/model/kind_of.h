#pragma once

#include <type_traits>
#include <typeinfo>

#include "model/components.h"

/// Telling kinds of components apart, as dynamic_cast does, for the places that do it by the
/// thousand: most objects are of one of the model's classes and not of one derived from it, and
/// comparing the class itself takes a few instructions.
namespace QB {

/// @p object if it is of the very class Kind, and not of one derived from it; else null.
/// Shape: @p object is not null. Where a class has more than one type record, as across libraries
/// that were loaded privately, this may be null for a Kind: ask ifKind then.
template <typename Kind, typename Base>
const Kind* ifExactly(const Base* object) {
    return &typeid(*object) == &typeid(Kind) ? static_cast<const Kind*>(object) : nullptr;
}

/// The classes that the model makes objects of; none of them derives from another.
template <typename... Kinds>
struct ModelKindList {
    template <typename Kind>
    static constexpr bool holds = (std::is_same_v<Kind, Kinds> || ...);
    template <typename Base>
    static bool holdsClassOf(const Base* object) {
        const std::type_info* const type = &typeid(*object);
        return ((type == &typeid(Kinds)) || ...);
    }
};
using ModelKinds = ModelKindList<
    Component::SQL::SQLSelectStmtComponent, Component::SQL::SQLIdentifierSourceComponent,
    Component::SQL::SQLAnyExpressionSourceComponent, Component::SQL::SQLSubquerySourceComponent,
    Component::SQL::SQLBracketedSourceNodeComponent, Component::SQL::SQLJoinSourceNodeComponent,
    Component::SQL::SQLFieldColumnComponent, Component::SQL::SQLAnyExpressionColumnComponent,
    Component::SQL::SQLConditionValueComponent, Component::SQL::SQLCompareConditionComponent,
    Component::SQL::SQLBracketedConditionComponent>;

/// What dynamic_cast gives, which takes long to find out that an object is of another class.
template <typename Kind, typename Base>
const Kind* ifKind(const Base* object) {
    if (!object) return nullptr;
    if (const Kind* exact = ifExactly<Kind>(object)) return exact;
    if (ModelKinds::holds<Kind> && ModelKinds::holdsClassOf(object)) return nullptr;
    return dynamic_cast<const Kind*>(object);
}
/// The same for who may change it.
template <typename Kind, typename Base>
Kind* ifKind(Base* object) {
    return const_cast<Kind*>(ifKind<Kind>(static_cast<const Base*>(object)));
}

}  // namespace QB
