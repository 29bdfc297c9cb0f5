#include "diagrampanel/diagram_popups.h"

#include <utility>

#include "diagrampanel/lumo_join_selection_popup_widget.h"
#include "engine/engine_linux.h"
#include "platform/tolk/tolk.h"
#include "popups/input_popup.h"
#include "tools/source_edits.h"
#include "tools/subquery_conversion.h"
#include "widgets/panel_widget.h"

namespace QB {

DiagramPopups::DiagramPopups(QBPanelWidget* panel, QWidget* view)
    : m_panel(panel), m_view(view), m_popup(panel) {
    connect(panel, &QBPanelWidget::engineSet, this, &DiagramPopups::connectEngine);
    if (panel->engine()) connectEngine();
}

DiagramPopups::~DiagramPopups() = default;

void DiagramPopups::connectEngine() {
    m_popup.cancel();
    const QBEngineSignalEmitter* const emitter = m_panel->engine()->signalEmitter();
    if (m_emitter) disconnect(m_emitter, nullptr, this, nullptr);
    m_emitter = emitter;
    using Emitter = QBEngineSignalEmitter;
    connect(emitter, &Emitter::topLevelQueryComponentElementModified, this,
            &DiagramPopups::closeOrphan);
    connect(emitter, &Emitter::topLevelQueryComponentLayerChanged, this,
            &DiagramPopups::closeOrphan);
    connect(emitter, &Emitter::databaseTypeChanged, this, &DiagramPopups::closeOrphan);
    connect(emitter, &QObject::destroyed, this, [this] { m_popup.cancel(); });
}

void DiagramPopups::closeOrphan() {
    if (m_popup.isOpen() && !findSource(m_panel->engine(), m_edited)) m_popup.cancel();
}

/// A parse under way replaces what is there.
bool DiagramPopups::isThere(long id) const {
    const QBEngine_LINUX* const engine = m_panel->engine();
    return engine && !engine->isParsingQuery() && findSource(engine, id);
}

QBPopupAnchorFinder DiagramPopups::at(const QRect& place, const QString& name, long id) {
    return [=]() -> std::optional<QBPopupAnchor> {
        if (m_popup.isOpen() || !isThere(id)) return std::nullopt;
        m_edited = id;
        return QBPopupAnchor(m_view, place, name);
    };
}

void DiagramPopups::editAlias(const Source* source, const QRect& place) {
    const long id = source->id();
    m_popup.editLine(QString::fromStdString(source->alias),
                     at(place, Tolk::localize(Tolk::TextPromptAlias), id),
                     [=](const QString& typed) { return takeAlias(id, typed); });
}

QString DiagramPopups::takeAlias(long id, const QString& typed) {
    const std::string alias = typed.trimmed().toStdString();
    if (!isThere(id)) return {};
    const QString fault = aliasFault(m_panel->engine(), id, alias);
    if (!fault.isEmpty()) return fault;
    editSource(m_panel->engine(), m_panel, id,
               [&](SourceEdits& edits, int row) { edits.setAlias(row, alias); });
    return {};
}

void DiagramPopups::editSubqueryText(const Subquery* subquery, const QRect& place) {
    if (!m_panel->engine()) return;
    const long id = subquery->id();
    m_popup.editText(QString::fromStdString(subqueryText(subquery->subquery, language())),
                     at(place, Tolk::localize(Tolk::TextEditAsPlainText), id),
                     [=](const QString& typed) { return takeSubqueryText(id, typed); });
}

QString DiagramPopups::takeSubqueryText(long id, const QString& typed) {
    if (!isThere(id)) return {};
    SubqueryReading reading = readSubquery(typed.trimmed().toStdString(), language());
    if (!reading.statement) return reading.error;
    editSource(m_panel->engine(), m_panel, id, [&](SourceEdits& edits, int row) {
        edits.setStatement(row, std::move(reading.statement), reading.alias);
    });
    return {};
}

void DiagramPopups::editJoin(Join* join, Source* left, Source* right, const QPoint& place) {
    if (join->joinType == SQLJoinTypeComma) return;  // which is no link
    const auto anchor =
        at(QRect(place, QSize(0, 0)), Tolk::localize(Tolk::TextCanvasActionEditJoin), join->id())();
    if (!anchor) return;
    auto* const editor = new QBLumoJoinSelectionPopupWidget(m_panel->engine(), join, left, right);
    m_popup.open(editor, *anchor, {});
    connect(editor, &QBLumoJoinSelectionPopupWidget::goneAway, this, [this] { m_popup.cancel(); });
}

TextLanguage DiagramPopups::language() const {
    return {m_panel->engine()->databaseInfo(), m_panel->engine()->currentSchema()};
}

}  // namespace QB
