#pragma once

#include <string>
#include <vector>

#include "model/vocabulary.h"

/// What the model does not keep of a text: comments, and how its lines end.
namespace QB::Cli {

/// What stands between two tokens of a text and is not blank: one comment or several.
struct Comment {
    int offset = 0;  ///< in bytes
    std::string text;
};

std::vector<Comment> commentsOf(const std::string& text, DatabaseType type);

/// The comments of @p before that @p after does not have, in order.
std::vector<Comment> lostComments(const std::vector<Comment>& before,
                                  const std::vector<Comment>& after);

/// @p text with CR LF at the end of each line, but for those inside strings and quoted names.
std::string withCarriageReturns(const std::string& text, DatabaseType type);

}  // namespace QB::Cli
