#pragma once

#include <functional>
#include <memory>
#include <string>

#include "canvas/base/object.h"

class LumoImage;

namespace QB::DiagramLumo {

/// A picture that can be clicked. A click and a double click stay its own.
class QBLumoButton : public QBLumoObject {
public:
    QBLumoButton();
    ~QBLumoButton() override;

    /// The button takes the size of the image, at (0, 0). A name that nobody knows gives an empty
    /// button.
    void setImage(const std::string& name);
    void setImage(LumoImage* image);  // takes ownership
    void setClickHandler(std::function<void(QBLumoButton*)> handler);
    void click();

    void paint(LumoPaintConfig* config, LumoRect rect) override;
    virtual bool responderMouseDown(LumoEvent event);
    virtual bool responderMouseUp(LumoEvent event);

private:
    void takeImageSize();

    std::unique_ptr<LumoImage> m_image;
    std::function<void(QBLumoButton*)> m_clicked;
};

}  // namespace QB::DiagramLumo
