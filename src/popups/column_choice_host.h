#pragma once

#include <vector>

#include "model/components.h"

namespace QB {

/// What a chooser of columns and sources offers.
enum class QBColumnChoice {
    Sources,       ///< tables and views of the server, by schema
    SelectFields,  ///< all columns, then each source with its star and its fields
    Fields,        ///< the fields of each source
    PickedFields   ///< the columns of the SELECT list, then the fields of each source
};

/// What a panel offers in a QBColumnSelectionPopupWidget. The panel implements it; the popup finds
/// it by dynamic_cast and without it shows an empty tree.
class IQBColumnChoiceHost {
public:
    virtual ~IQBColumnChoiceHost() = default;

    virtual QBColumnChoice columnChoice() const = 0;
    /// The sources whose fields are offered, in the order of the tree, each once: those of the
    /// statement, or those that a join can see. Not used for Sources. Valid at the moment of the
    /// call.
    virtual std::vector<Component::SQL::SQLAbstractSourceComponent*> choiceSources() const = 0;
};

}  // namespace QB
