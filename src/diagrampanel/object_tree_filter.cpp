#include "diagrampanel/object_tree_filter.h"

#include <algorithm>
#include <utility>

namespace QB {
namespace {

constexpr std::size_t rowsAStep = 256;
constexpr int portion = 16384;

}  // namespace

ObjectTreeFilter::ObjectTreeFilter(ObjectTreeStore& store)
    : m_store(store), m_matcher(QString(), Qt::CaseInsensitive) {}

void ObjectTreeFilter::setText(const QString& text) {
    m_text = text;
    m_matcher.setPattern(text);
}

void ObjectTreeFilter::start() {
    cancel();
    m_store.root.hasMatchBelow = false;
    if (!isActive()) {
        m_phase = Phase::Showing;
        m_targets.push_back({&m_store.root, true});
        return;
    }
    m_phase = Phase::Matching;
    m_searches.push_back({&m_store.root});
}

void ObjectTreeFilter::cancel() {
    m_phase = Phase::Idle;
    m_searches.clear();
    m_targets.clear();
    m_wanted.clear();
    m_target = {nullptr, false};
}

bool ObjectTreeFilter::step() {
    switch (m_phase) {
        case Phase::Idle:
            return false;
        case Phase::Matching:
            matchStep();
            return true;
        case Phase::Showing:
            showStep();
            return true;
    }
    return false;
}

bool ObjectTreeFilter::isNextStepLong() const {
    return m_phase == Phase::Showing && m_target.row && m_stage == Stage::Replacing &&
           m_store.isHidingLong(m_target.row);
}

void ObjectTreeFilter::matchStep() {
    Search& search = m_searches.back();
    const std::vector<ObjectTreeItem*>& rows = search.row->rows();
    const std::size_t end = std::min(rows.size(), search.next + rowsAStep);
    while (search.next < end) {
        ObjectTreeItem* row = rows[search.next++];
        row->hasMatchBelow = false;
        row->passesFilter = match(row);
        if (row->passesFilter) search.row->hasMatchBelow = true;
        if (!row->rows().empty()) {
            m_searches.push_back({row});
            return;
        }
    }
    if (search.next == rows.size()) leaveSearch();
}

void ObjectTreeFilter::leaveSearch() {
    ObjectTreeItem* row = m_searches.back().row;
    m_searches.pop_back();
    if (m_searches.empty()) {
        m_phase = Phase::Showing;
        m_targets.push_back({&m_store.root, false});
        return;
    }
    if (!row->hasMatchBelow) return;
    row->passesFilter = true;
    m_searches.back().row->hasMatchBelow = true;
}

bool ObjectTreeFilter::match(const ObjectTreeItem* row) const {
    return m_matcher.indexIn(row->name()) >= 0;
}

void ObjectTreeFilter::showStep() {
    if (!m_target.row) return nextTarget();
    switch (m_stage) {
        case Stage::Collecting:
            return collectStep();
        case Stage::Replacing:
            return replaceShown();
        case Stage::Adding:
            return addStep();
        case Stage::Opening:
            return openStep();
    }
}

void ObjectTreeFilter::nextTarget() {
    if (m_targets.empty()) return cancel();
    m_target = m_targets.back();
    m_targets.pop_back();
    m_stage = Stage::Collecting;
    m_next = 0;
    m_wanted.clear();
}

void ObjectTreeFilter::collectStep() {
    const std::vector<ObjectTreeItem*>& rows = m_target.row->rows();
    const auto begin = static_cast<std::size_t>(m_next);
    const std::size_t end = std::min(rows.size(), begin + rowsAStep);
    for (std::size_t i = begin; i < end; ++i) {
        if (m_target.showsAll || rows[i]->passesFilter) m_wanted.append(rows[i]);
    }
    m_next = static_cast<int>(end);
    if (end == rows.size()) m_stage = Stage::Replacing;
}

bool ObjectTreeFilter::isShownAlready() const {
    const QTreeWidgetItem* shown = m_store.shownParent(m_target.row);
    if (shown->childCount() != m_wanted.size()) return false;
    for (int i = 0; i < m_wanted.size(); ++i) {
        if (shown->child(i) != m_wanted[i]) return false;
    }
    return true;
}

void ObjectTreeFilter::replaceShown() {
    m_next = 0;
    if (isShownAlready()) {
        m_stage = Stage::Opening;
        return;
    }
    m_store.hideRows(m_target.row);
    m_stage = Stage::Adding;
}

void ObjectTreeFilter::addStep() {
    m_store.showRows(m_target.row, m_wanted.mid(m_next, portion));
    m_next += portion;
    if (m_next < m_wanted.size()) return;
    m_stage = Stage::Opening;
    m_next = 0;
}

void ObjectTreeFilter::openStep() {
    const int end = std::min(m_wanted.size(), m_next + static_cast<int>(rowsAStep));
    for (; m_next < end; ++m_next) {
        auto* row = static_cast<ObjectTreeItem*>(m_wanted[m_next]);
        // Asking a row whether it stands open makes its parent look for it among all its rows.
        if (row->rows().empty() && !row->isExpandedByUser) continue;
        const bool opensForMatch = isActive() && row->hasMatchBelow && !m_target.showsAll;
        m_store.setExpanded(row, row->isExpandedByUser || opensForMatch);
        m_targets.push_back({row, m_target.showsAll || showsAllBelow(row)});
    }
    if (m_next == m_wanted.size()) m_target.row = nullptr;
}

bool ObjectTreeFilter::showsAllBelow(const ObjectTreeItem* row) const {
    if (!isActive()) return true;
    if (isTableLike(row->type())) return match(row);
    return !row->hasMatchBelow;
}

}  // namespace QB
