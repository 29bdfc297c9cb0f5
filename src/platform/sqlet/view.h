#pragma once

#include "platform/sqlet/parser.h"

namespace sqlet {

/// Settles what the accessors show of the outermost statement @p select, whose sources are all
/// known by now: a name or an aggregate that a host could not rebuild from its parts becomes text
/// (ColumnForm::Text, ExprForm::Text, TableForm::Text). Then marks every token that is shown, and
/// fails with SQLET_ERROR_UNSUPPORTED at the first token that is neither shown nor structure.
/// Linear.
void settleView(SqletParser& parser, SqletSelect& select);

}  // namespace sqlet
