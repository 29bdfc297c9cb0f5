#include "conditions/join_condition_panel.h"

#include "conditions/condition_builder_panel_widget.h"

namespace QB {

QBConditionBuilderPanelWidget* makeJoinConditionPanel(
    QBEngine_LINUX* engine, const Component::SQL::SQLJoinSourceNodeComponent* join,
    const QList<Component::SQL::SQLAbstractSourceComponent*>& sources, QWidget* parent) {
    auto* const conditions = new QBConditionBuilderPanelWidget(nullptr, parent);
    conditions->setMinimumSize(600, 200);
    conditions->setBordered(true);
    conditions->setFocusProxy(conditions->rowView());
    conditions->setJoin(join);
    conditions->setRelatedComponents(sources);
    conditions->setEngine(engine);
    return conditions;
}

}  // namespace QB
