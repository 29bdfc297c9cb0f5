#pragma once

#include <string>
#include <vector>

#include "platform/lumo/lumo_paint.h"

namespace QB::DiagramLumo {

/// Images by name out of the resources. A name is a path, but "ResID_BtnSubqueryEdit" is the
/// picture of the button that opens a subquery. An image that is missing is given as an empty one.
class QBLumoImageResourceProvider_LINUX : public LumoImageResourceProvider {
public:
    ~QBLumoImageResourceProvider_LINUX() override;
    unsigned long loadImage(const std::string& name, char** data) override;

private:
    std::vector<char*> m_buffers;  // owned, from malloc
};

}  // namespace QB::DiagramLumo
