#pragma once

#include <typeinfo>

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

/// What dynamic_cast gives.
template <typename Kind, typename Base>
const Kind* ifKind(const Base* object) {
    if (!object) return nullptr;
    if (const Kind* exact = ifExactly<Kind>(object)) return exact;
    return dynamic_cast<const Kind*>(object);
}

}  // namespace QB
