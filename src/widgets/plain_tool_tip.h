#pragma once

#include <QString>

namespace QB {

/// Rich text for a tooltip that shows @p text as it stands, wraps it, and cuts it after 2,000
/// characters; Qt would take markup in it for its own. Empty for an empty text.
QString plainToolTip(const QString& text);

}  // namespace QB
