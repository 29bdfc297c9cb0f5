#pragma once

class QLayout;
class QWidget;

namespace QB {

/// Puts @p content, which may be null, into @p layout in place of @p old, which is destroyed as
/// soon as it is safe: it may be the one that asks. Buttons in @p content lose autoDefault, so that
/// none of them takes a Return that another widget means.
/// Ownership: the widget of @p layout takes @p content.
void replaceContent(QLayout* layout, QWidget* old, QWidget* content);

}  // namespace QB
