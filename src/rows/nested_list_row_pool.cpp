#include "rows/nested_list_row_pool.h"

#include <QGuiApplication>
#include <algorithm>
#include <utility>

#include "rows/nested_list_table_view.h"

namespace QB {
namespace {

// What a change of the window's height asks for at once; more would only take memory.
constexpr std::size_t mostSparesOfAKind = 64;

}  // namespace

QBNestedListRowWidget* QBNestedListRowPool::find(int row) const {
    const auto found = m_shown.find(row);
    return found == m_shown.end() ? nullptr : found->second.widget;
}

QBNestedListRowWidget* QBNestedListRowPool::make(int row) {
    const int kind = m_provider->rowKind(row);
    if (kind < 0) return nullptr;
    QBNestedListRowWidget* widget = takeSpare(kind);
    if (widget == nullptr) {
        widget = m_provider->createRowWidget(row, m_parent);
        if (widget == nullptr) return nullptr;
        created(widget);
    }
    m_shown.emplace(row, Shown{widget, kind});
    m_provider->updateRowWidget(widget, row);
    return widget;
}

int QBNestedListRowPool::rowOf(const QWidget* widget) const {
    while (widget != nullptr && widget->parentWidget() != m_parent)
        widget = widget->parentWidget();
    const auto found = std::find_if(m_shown.begin(), m_shown.end(), [widget](const auto& shown) {
        return shown.second.widget == widget;
    });
    return widget == nullptr || found == m_shown.end() ? -1 : found->first;
}

std::vector<int> QBNestedListRowPool::rows() const {
    std::vector<int> rows;
    for (const auto& [row, shown] : m_shown)
        rows.push_back(row);
    return rows;
}

void QBNestedListRowPool::update(int row) {
    if (QBNestedListRowWidget* widget = find(row)) m_provider->updateRowWidget(widget, row);
}

void QBNestedListRowPool::renumber(const std::function<int(int)>& newRow) {
    const std::map<int, Shown> earlier = std::exchange(m_shown, {});
    for (const auto& [row, shown] : earlier) {
        const int target = newRow(row);
        const bool fits = target >= 0 && m_provider->rowKind(target) == shown.kind;
        if (!fits || !m_shown.emplace(target, shown).second) makeSpare(shown);
    }
    for (const auto& [row, shown] : m_shown)
        m_provider->updateRowWidget(shown.widget, row);
}

void QBNestedListRowPool::keepOnly(const std::function<bool(int)>& isWanted) {
    for (auto shown = m_shown.begin(); shown != m_shown.end();) {
        if (isWanted(shown->first)) {
            ++shown;
        } else {
            makeSpare(shown->second);
            shown = m_shown.erase(shown);
        }
    }
}

void QBNestedListRowPool::tidySpares() {
    for (auto& [kind, spares] : m_spares) {
        while (spares.size() > mostSparesOfAKind && !isHeld(spares.back())) {
            spares.back()->deleteLater();
            spares.pop_back();
        }
        for (QBNestedListRowWidget* spare : spares)
            spare->hide();
    }
}

QBNestedListRowWidget* QBNestedListRowPool::takeSpare(int kind) {
    auto& spares = m_spares[kind];
    const auto free = std::find_if(spares.rbegin(), spares.rend(),
                                   [this](const auto* spare) { return !isHeld(spare); });
    if (free == spares.rend()) return nullptr;
    QBNestedListRowWidget* widget = *free;
    spares.erase(std::next(free).base());
    return widget;
}

void QBNestedListRowPool::makeSpare(const Shown& shown) {
    // Nothing says how long the component will live.
    shown.widget->setComponent(nullptr);
    shown.widget->setCurrentPart(nullptr);
    m_spares[shown.kind].push_back(shown.widget);
}

bool QBNestedListRowPool::isHeld(const QBNestedListRowWidget* widget) const {
    return widget == m_held && QGuiApplication::mouseButtons() != Qt::NoButton;
}

}  // namespace QB
