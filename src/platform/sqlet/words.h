#pragma once

/// The words of each server family: what a bare word means to the server's own parser. The text
/// generator, the highlighter and hosts that quote names share this table.
///
/// Families are numbered as QB::DatabaseType: 1 MySQL, 2 PostgreSQL, 3 Oracle, 4 SQLite,
/// 5 SQL Server, 6 MariaDB. Any other number has no words, folds nothing and calls no word plain.
/// Thread: any. Nothing here fails.

#define SQLET_API __attribute__((visibility("default")))

#ifdef __cplusplus
extern "C" {
#endif

/// What a word is, as a sum of flags; 0 is a word without a meaning of its own.
enum SqletWordFlag {
    /// Cannot stand bare as the name of a table or column, or as a qualifier: quote it.
    SQLET_WORD_RESERVED = 1,
    /// Cannot follow an expression as its alias without AS.
    SQLET_WORD_NO_BARE_ALIAS = 2,
    /// Reads as a value (TRUE, NULL, CURRENT_DATE) where a column name could stand.
    SQLET_WORD_CONSTANT = 4,
    /// Has a meaning in the grammar: highlighted as a keyword, reserved or not.
    SQLET_WORD_KEYWORD = 8,
    /// A standard aggregate, whose name stays bare in front of a bracket.
    SQLET_WORD_FUNCTION = 16
};

/// How the server reads the letters of a bare word.
enum SqletFolding {
    SQLET_FOLDING_NONE = 0,  ///< any case names the same thing
    SQLET_FOLDING_LOWER = 1,
    SQLET_FOLDING_UPPER = 2
};

/// The flags of the @p length bytes at @p word, in any case; 0 if it is no word of @p family.
SQLET_API unsigned sqlet_word_class(int family, const char* word, int length);

/// Word @p index of @p family, counted from 0, in upper case and alphabetical order, with its
/// flags in @p flags (which may be null); null behind the last word. The text stays valid.
SQLET_API const char* sqlet_words(int family, int index, unsigned* flags);

/// A value of SqletFolding.
SQLET_API int sqlet_folding(int family);

/// 1 if the bytes have the form of a word that needs no quotes: ASCII letters, digits and
/// underscores, not starting with a digit (for Oracle with a letter); not empty. Says nothing
/// about reserved words and case.
SQLET_API int sqlet_is_plain_word(int family, const char* word, int length);

/// 1 if the server reads the bare word as that very name, in these very letters: plain, neither
/// reserved nor a constant, and in the case that the family folds to.
SQLET_API int sqlet_reads_as_name(int family, const char* word, int length);

#ifdef __cplusplus
}
#endif
