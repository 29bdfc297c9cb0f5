#pragma once

#include <QList>

#include "model/components.h"

class QWidget;

namespace QB {

class QBConditionBuilderPanelWidget;
class QBEngine_LINUX;

/// The panel of the ON condition of @p join, framed, for a popup. It looks the join up by itself at
/// each change, and tells by rootLost() that it has gone. @p sources are those that the join sees.
/// Its edits have it as the sender.
/// Ownership: the caller's, or that of @p parent. Thread: main.
QBConditionBuilderPanelWidget* makeJoinConditionPanel(
    QBEngine_LINUX* engine, const Component::SQL::SQLJoinSourceNodeComponent* join,
    const QList<Component::SQL::SQLAbstractSourceComponent*>& sources, QWidget* parent = nullptr);

}  // namespace QB
