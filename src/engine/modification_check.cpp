#include "engine/modification_check.h"

#include <cstdio>
#include <cstdlib>
#include <string>

#include "engine/retired_parts.h"
#include "model/statement_check.h"

namespace QB {

namespace {

[[noreturn]] void endProgram(ModificationCheck::Modification modification,
                             const std::string& faults) {
    std::fprintf(stderr, "Broken by a modification of element %d in layer %d:\n%s",
                 static_cast<int>(modification.element), modification.layer, faults.c_str());
    std::abort();
}

}  // namespace

void ModificationCheck::run(Modification modification, const Layers& layers,
                            const RetiredParts& retired) {
    if (layers.empty()) return;
    if (m_skipped > 0) {
        --m_skipped;
        return;
    }
    StatementCheck check(layers.front());
    retired.visit([&check](const DetachedParts& parts) { check.addDetached(parts); });
    check.addLayers(layers);
    m_skipped = check.size() / alwaysChecked;
    const std::string faults = check.faults();
    if (!faults.empty()) endProgram(modification, faults);
}

}  // namespace QB
