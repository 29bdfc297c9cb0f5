#pragma once

#include "platform/lumo/lumo_object.h"

class LumoContext;

/// The root of a tree: what a control shows. Its rectangle lies at (0, 0) and is the canvas.
class LumoDiagram : public LumoObject {
public:
    /// @p context knows the diagram from now on, until one of the two goes.
    explicit LumoDiagram(LumoContext* context);
    ~LumoDiagram() override;

    LumoContext* getContext() const { return m_context; }

    /// Only the size counts: the canvas stays at (0, 0).
    void setRect(const LumoRect& rect) override;
    void flushDirtyRect() override;

private:
    friend class LumoContext;
    const LumoDiagram* asDiagram() const override;

    LumoContext* m_context = nullptr;  // not owned; null after the context has gone
};
