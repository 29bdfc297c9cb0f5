#pragma once

#include "platform/sqlet/words.h"

/// A parser of SELECT statements for five dialects, behind a C interface; standard C++ only.
///
/// The text is parsed once, by sqlet_create; the accessors then show the statement as a tree of
/// nodes. Accessors make their texts when they are first asked for and keep them with the handle:
/// a handle and its nodes belong to one thread at a time. All nodes and texts live until
/// sqlet_free. Every accessor takes null, and an index out of range, and then gives null, 0 or an
/// empty count. Lists are indexed from 0, in constant time.
///
/// Names come back decoded (without quotes) and, where they stood without quotes, in the case that
/// the server folds to. A name is shown only where the text that a host quotes again means the
/// same; everything else is shown as text, as written.
///
/// Nothing is dropped silently: a statement with a part that no accessor shows has an error.

#ifdef __cplusplus
extern "C" {
#endif

typedef struct SqletParser SqletParser;  ///< a parsed text
typedef struct SqletSelect SqletSelect;  ///< a SELECT statement
typedef struct SqletTable SqletTable;    ///< a source, or a join of two
typedef struct SqletColumn SqletColumn;  ///< an item of a SELECT, GROUP BY, ORDER BY or IN list
typedef struct SqletExpr SqletExpr;      ///< a condition or an operand

/// The kind of a statement that can be shown; every other kind means that it cannot.
enum { SQLET_STATEMENT_NONE = 0, SQLET_STATEMENT_OTHER = 1, SQLET_STATEMENT_SELECT = 2 };

/// What an error is about.
enum SqletErrorKind {
    SQLET_ERROR_NONE = 0,
    SQLET_ERROR_SYNTAX = 1,       ///< no text of the dialect, or none that this parser knows
    SQLET_ERROR_UNSUPPORTED = 2,  ///< understood, but nothing could show it
    SQLET_ERROR_LIMIT = 3         ///< too deep, too long or too many
};

/// A stretch of the text, in bytes; start -1: the clause is absent.
typedef struct SqletStretch {
    int start;
    int length;
} SqletStretch;

/// Parses @p text, which is copied. @p dialect: 1 MySQL and MariaDB, 2 PostgreSQL, 3 Oracle,
/// 4 SQLite, 5 SQL Server; any other number, or a null text, gives a handle with an error.
/// @p one is 1 and reserved. Never null. The caller owns the handle.
SQLET_API SqletParser* sqlet_create(int dialect, const char* text, int one);
SQLET_API void sqlet_free(SqletParser* parser);

/// The same, with the schema in which bare table names are found (copied; empty: none, null: not
/// known, as sqlet_create has it). Where sources of an explicit schema stand beside bare ones, only
/// this tells whether they all lie in one schema; if it is not known, what would be written with a
/// schema in several is shown as text.
SQLET_API SqletParser* sqlet_create_in_schema(int dialect, const char* text,
                                              const char* default_schema);

/// 0 if the text is clean; else 1, the first error.
SQLET_API int sqlet_number_of_error(SqletParser* parser);
/// Such as "line 3, column 12: unexpected 'FORM', expected ',' or FROM"; columns count code points
/// from 1. Empty if there is no error.
SQLET_API const char* sqlet_last_error_msg(SqletParser* parser);
/// Not 0 if a token follows the semicolon behind the first statement. What follows is not parsed.
SQLET_API int sqlet_is_multi_stmts(SqletParser* parser);
/// Kind of the statement: SQLET_STATEMENT_SELECT only if there is no error and the accessors show
/// all of it.
SQLET_API int sqlet_last_stmt_type(SqletParser* parser);

/// Null unless the statement is of kind SQLET_STATEMENT_SELECT.
SQLET_API SqletSelect* sqlet_select(SqletParser* parser);
/// Fills where the SELECT list, FROM, WHERE, GROUP BY, HAVING, ORDER BY, the limit and the whole
/// statement stand; each output may be null.
SQLET_API void sqlet_select_by_parts(SqletParser* parser, SqletStretch* columns, SqletStretch* from,
                                     SqletStretch* where, SqletStretch* group_by,
                                     SqletStretch* having, SqletStretch* order_by,
                                     SqletStretch* limit, SqletStretch* statement);

// ---- the statement ---------------------------------------------------------------------------

/// The first character of the statement, in the text that was given to sqlet_create (not in the
/// parser's copy, so it is valid only while the caller keeps that text).
SQLET_API const char* sqlet_select_start(SqletSelect* select);
SQLET_API int sqlet_select_length(SqletSelect* select);
SQLET_API SqletTable* sqlet_select_tab(SqletSelect* select);
SQLET_API int sqlet_select_is_distinct(SqletSelect* select);
SQLET_API int sqlet_select_number_of_columns(SqletSelect* select);
SQLET_API SqletColumn* sqlet_select_column_at(SqletSelect* select, int index);
SQLET_API SqletExpr* sqlet_select_where_expr(SqletSelect* select);
SQLET_API SqletExpr* sqlet_select_having_expr(SqletSelect* select);
SQLET_API int sqlet_select_group_by_number_of_columns(SqletSelect* select);
SQLET_API SqletColumn* sqlet_select_group_by_column_at(SqletSelect* select, int index);
SQLET_API int sqlet_select_order_by_number_of_columns(SqletSelect* select);
SQLET_API SqletColumn* sqlet_select_order_by_column_at(SqletSelect* select, int index);
/// "FIRST" for a limit without an offset in FETCH form, "NEXT" where there is an offset; else null.
SQLET_API const char* sqlet_select_limit_fetch_option(SqletSelect* select);
/// Decimal text, or null.
SQLET_API const char* sqlet_select_limit_offset(SqletSelect* select);
SQLET_API const char* sqlet_select_limit_limit(SqletSelect* select);
SQLET_API int sqlet_select_limit_is_fetch_percent(SqletSelect* select);
/// "ONLY", "WITH TIES" or null.
SQLET_API const char* sqlet_select_limit_return_option(SqletSelect* select);

// ---- sources ---------------------------------------------------------------------------------

/// How many brackets enclose the node, counted from the root.
SQLET_API unsigned sqlet_select_tab_inside_number_of_parens(SqletTable* table);
/// The two sides of a join; a node without a left side is a leaf.
SQLET_API SqletTable* sqlet_select_tab_left(SqletTable* table);
SQLET_API SqletTable* sqlet_select_tab_right(SqletTable* table);
/// The join words in upper case with single blanks, "," for a comma; null where the node only wraps
/// its left side.
SQLET_API const char* sqlet_select_tab_join_op(SqletTable* table);
SQLET_API SqletExpr* sqlet_select_tab_on_expr(SqletTable* table);
/// Qualifiers of a table name, outermost first.
SQLET_API const char* sqlet_select_tab_parent1(SqletTable* table);
SQLET_API const char* sqlet_select_tab_parent0(SqletTable* table);
SQLET_API const char* sqlet_select_tab_parent(SqletTable* table);
/// Null where the source is no plain name.
SQLET_API const char* sqlet_select_tab_name(SqletTable* table);
/// The source as written, without its alias. Never null.
SQLET_API const char* sqlet_select_tab_complex(SqletTable* table);
SQLET_API const char* sqlet_select_tab_alias(SqletTable* table);

// ---- columns ---------------------------------------------------------------------------------

/// Null where the column is an expression; "*" for all columns.
SQLET_API const char* sqlet_select_column_name(SqletColumn* column);
/// The name as written, with its quotes; never null where there is a name.
SQLET_API const char* sqlet_select_column_formatted_name(SqletColumn* column);
SQLET_API const char* sqlet_select_column_parent0(SqletColumn* column);
SQLET_API const char* sqlet_select_column_parent1(SqletColumn* column);
SQLET_API const char* sqlet_select_column_parent2(SqletColumn* column);
/// Name of an aggregate over one column or "*"; and its argument as written.
SQLET_API const char* sqlet_select_column_aggre_func(SqletColumn* column);
SQLET_API const char* sqlet_select_column_aggre_func_param(SqletColumn* column);
/// The column as written, without its alias and direction. Never null.
SQLET_API const char* sqlet_select_column_complex(SqletColumn* column);
SQLET_API const char* sqlet_select_column_alias(SqletColumn* column);
/// 1 for DESC, 0 for ASC or nothing; negative: the text carries its own direction (NULLS LAST).
SQLET_API int sqlet_select_column_is_desc(SqletColumn* column);
/// The next item of an IN list; null elsewhere.
SQLET_API SqletColumn* sqlet_select_column_next(SqletColumn* column);

// ---- conditions ------------------------------------------------------------------------------

/// As for the table node.
SQLET_API unsigned sqlet_expr_inside_number_of_parens(SqletExpr* expr);
/// "AND", "OR" or the operator of a comparison in upper case with single blanks, such as "NOT IN";
/// null for a leaf.
SQLET_API const char* sqlet_expr_op(SqletExpr* expr);
/// Operands; a node without a left one is a leaf. Chains lean to the left.
SQLET_API SqletExpr* sqlet_expr_left(SqletExpr* expr);
SQLET_API SqletExpr* sqlet_expr_right(SqletExpr* expr);
/// The expression as written. Never null.
SQLET_API const char* sqlet_expr_complex(SqletExpr* expr);
SQLET_API const char* sqlet_expr_name(SqletExpr* expr);
/// Qualifiers of a name, outermost first.
SQLET_API const char* sqlet_expr_parent1(SqletExpr* expr);
SQLET_API const char* sqlet_expr_parent2(SqletExpr* expr);
SQLET_API const char* sqlet_expr_aggre_func(SqletExpr* expr);
/// First item of the list at the right of IN; null elsewhere.
SQLET_API SqletColumn* sqlet_expr_list_item(SqletExpr* expr);
SQLET_API int sqlet_expr_is_using(SqletExpr* expr);
SQLET_API int sqlet_expr_number_of_using_items(SqletExpr* expr);
/// The item as written, with its quotes.
SQLET_API const char* sqlet_expr_using_item_at(SqletExpr* expr, int index);

// ---- beyond the tree -------------------------------------------------------------------------

/// Whether NOT stands before the comparison or the group that the node is, and where: 0 if not,
/// else one more than the number of brackets, counted from the root, in which that NOT stands. So 1
/// for NOT (a = 1 OR b = 2), and 2 for the comparison in (NOT a = 1). The node's text is without
/// the NOT.
SQLET_API int sqlet_expr_is_negated(SqletExpr* expr);

/// A value of SqletErrorKind.
SQLET_API int sqlet_error_kind(SqletParser* parser);
/// Where the first error is, in bytes; start -1 if there is none. The length is that of the token
/// met, at least 1 unless the text ends there.
SQLET_API SqletStretch sqlet_error_stretch(SqletParser* parser);
/// The token with which the statement begins that a text of one SELECT must not have: the second of
/// several, or else the first. Of length 0, at the end, if there is none.
SQLET_API SqletStretch sqlet_unwanted_stretch(SqletParser* parser);
/// "line L, column C" of the byte @p offset of the text.
SQLET_API const char* sqlet_position_text(SqletParser* parser, int offset);

/// 1 if a name in quotes, or a string that may be one, spells a word of the dialect: without quotes
/// it might read otherwise.
SQLET_API int sqlet_has_quoted_word(SqletParser* parser);

/// Compares two statements of kind SQLET_STATEMENT_SELECT in the same dialect by what they mean to
/// the server: names folded, unqualified tables in @p default_schema (may be null), "!=" as "<>",
/// ASC and AS and INNER and OUTER left out, brackets that change nothing left out, limits by their
/// numbers. Returns -1 if they are equal, else the offset in the text of @p original at which they
/// first differ. A handle of another kind differs from every other at 0.
SQLET_API int sqlet_first_difference(SqletParser* original, SqletParser* rebuilt,
                                     const char* default_schema);

#ifdef __cplusplus
}
#endif
