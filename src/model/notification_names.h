#pragma once

#include <string>

/// The names of all notifications that an engine sends; they compare by text.
namespace QB::Notification {

inline const std::string uiReset = "UIResetNotification";
inline const std::string databaseServerChanged = "DatabaseServerChangedNotification";
inline const std::string currentSchemaChanged = "CurrentSchemaChangedNotification";
inline const std::string identifierCandidateChildrenUpdateBegun =
    "IdentifierCandidateChildrenUpdateBegunNotification";
inline const std::string identifierCandidateChildrenUpdateEnded =
    "IdentifierCandidateChildrenUpdateEndedNotification";
inline const std::string topLevelQueryComponentLayerChanged =
    "TopLevelQueryComponentLayerChangedNotification";
inline const std::string topLevelQueryComponentElementModified =
    "TopLevelQueryComponentElementModifiedNotification";
inline const std::string parsingQueryUnsupported = "ParsingQueryUnsupportedNotification";
inline const std::string componentFocusChanged = "ComponentFocusChangedNotification";

}  // namespace QB::Notification
