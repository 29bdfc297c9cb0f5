#include "engine/modification_check.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "engine/retired_parts.h"
#include "engine/text_check.h"
#include "model/statement_check.h"

namespace QB {

namespace {

std::atomic<bool> isTextChecked{false};
std::atomic<long> acceptedTexts{0};
std::atomic<long> refusedTexts{0};

void endIfBroken(const ModificationCheck::Modification& modification, const std::string& faults) {
    if (faults.empty()) return;
    std::fprintf(stderr, "Broken by a modification of element %d in layer %d:\n%s",
                 static_cast<int>(modification.element), modification.layer, faults.c_str());
    std::abort();
}

std::string textFaults(const Component::AbstractTopLevelQueryComponent* root,
                       const ModificationCheck::Modification& modification) {
    const auto* statement = dynamic_cast<const Component::SQL::SQLSelectStmtComponent*>(root);
    if (!isTextChecked || !statement) return {};
    const TextReading reading = readOwnText(*statement, modification.type, modification.schema);
    ++(reading.isAccepted ? acceptedTexts : refusedTexts);
    return reading.faults.empty() ? "" : reading.faults + "in\n" + reading.text + "\n";
}

}  // namespace

void ModificationCheck::run(const Modification& modification, const Layers& layers,
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
    endIfBroken(modification, check.faults());
    endIfBroken(modification, textFaults(layers.front(), modification));
}

void setTextCheck(bool isOn) {
    isTextChecked = isOn;
}

TextCheckCounts textCheckCounts() {
    return {acceptedTexts, refusedTexts};
}

}  // namespace QB
