#pragma once

#include <memory>

#include "platform/lumo/lumo_object.h"

class LumoContext;

/// The root of a tree: what a control shows. Its rectangle lies at (0, 0) and is the canvas.
class LumoDiagram : public LumoObject {
public:
    /// @p context outlives the diagram, which takes itself out of it when destroyed.
    explicit LumoDiagram(LumoContext* context);
    ~LumoDiagram() override;

    LumoContext* getContext() const { return m_context; }

    void setRect(const LumoRect& rect) override;
    void invalidate() override;
    void flushDirtyRect() override;

private:
    friend class LumoObject;
    LumoContext* m_context = nullptr;  // not owned
};
