-- Statements for SQLite. The form of this file: see statement_file.h; the tables: see
-- adversarial_schema.cpp.

--- names in double quotes
SELECT "id", "n" FROM "a" WHERE "a"."n" = 1

--- names in brackets and backticks
SELECT [id], `n` FROM [a] WHERE `a`.[n] = 1

--- names in another case
SELECT A.ID, x.N FROM A JOIN B AS X ON a.Id = X.iD

--- tables that need quotes
SELECT "two words".n, "order".id, "we""ird".name FROM "two words", "order", "we""ird" WHERE "order".id = "we""ird".id AND "two words".id < 6

--- a column that is a keyword
SELECT "select", "2", "My A", "user", "true" FROM odd WHERE "select" > 2

--- columns that are keywords, qualified
SELECT odd."select", odd."2", odd."true" FROM odd WHERE odd."select" > 2 ORDER BY odd."2", odd.id

--- TRUE beside a column of that name
SELECT id, "true", true FROM odd WHERE true AND odd."true" > 4

--- CURRENT_DATE beside a column of that name
SELECT id, "current_date" FROM odd WHERE current_date IS NOT NULL AND "current_date" > 4

--- count as a column
SELECT count, count(*) FROM odd WHERE "count" = 1

--- a string in double quotes at the right of a comparison
SELECT id FROM a WHERE name = "two"

--- a column in double quotes at the right of a comparison
SELECT id FROM a WHERE 3 = "n"

--- a string in double quotes in an IN list
SELECT id FROM a WHERE name IN ("two", "one")

--- an alias in double quotes
SELECT id AS "My A", n AS "2" FROM b WHERE n IS NOT NULL ORDER BY "My A", "2"

--- an alias that is a number must not become an ordinal
SELECT id AS "2", y FROM b WHERE y IS NOT NULL ORDER BY "2", y

--- an alias in single quotes
SELECT id AS 'k', n 'v' FROM a

--- a source alias in double quotes
SELECT "My A".id, "x y".n FROM a AS "My A", b "x y" WHERE "My A".id = "x y".id

--- an alias called like another table
SELECT O.id, O.n FROM a AS O

--- IN with the table itself
SELECT id FROM a WHERE (id, n, y, total, name) IN b

--- NOT IN with a table of another schema
SELECT id FROM a WHERE (id, n, y, total, name) NOT IN other.a

--- IN with a doubly bracketed subquery is a scalar
SELECT id FROM a WHERE id IN ((SELECT id FROM b ORDER BY id))

--- NOT IN with a doubly bracketed subquery
SELECT id FROM a WHERE id NOT IN ((SELECT id FROM b WHERE n > 1))

--- IN with nothing
SELECT id FROM a WHERE id NOT IN ()

--- IN with rows in brackets
SELECT id FROM a WHERE (id, n) IN (VALUES (1, 3), (2, 1))

--- GLOB
SELECT id FROM a WHERE name GLOB 't*' OR name NOT GLOB '*o*'

--- two equals signs
SELECT id FROM a WHERE n == 1

--- IS between values
SELECT id FROM a WHERE n IS 1 OR n IS NULL AND y IS NOT 5

--- IS between columns
SELECT a.id FROM a, b WHERE a.n IS b.n

--- IS DISTINCT FROM
SELECT id FROM a WHERE n IS DISTINCT FROM 1

--- IS NOT DISTINCT FROM
SELECT id FROM a WHERE n IS NOT DISTINCT FROM NULL

--- ISNULL, NOTNULL and NOT NULL
SELECT id FROM a WHERE n ISNULL OR name NOTNULL AND y NOT NULL

--- postfix tests followed by more
SELECT id FROM a WHERE n NOTNULL AND y = 20 OR n ISNULL

--- IS TRUE
SELECT id FROM a WHERE (n = 1) IS TRUE OR (n = 1) IS NOT FALSE AND id = 4

--- a bare column as a condition
SELECT id FROM a WHERE n AND y

--- a bare column with NOT
SELECT id FROM a WHERE NOT (n - 1) OR n - 2

--- concatenation
SELECT id, name || '-' || n FROM a WHERE name || 'x' = 'twox'

--- COLLATE
SELECT id, name FROM a WHERE name = 'TWO' COLLATE NOCASE

--- COLLATE in ORDER BY
SELECT id, name FROM b WHERE name IS NOT NULL ORDER BY name COLLATE NOCASE DESC, id

--- COLLATE without an alias
SELECT name COLLATE NOCASE FROM a

--- NULLS FIRST and LAST
SELECT id, n FROM a ORDER BY n NULLS LAST, id, y

--- NULLS LAST descending
SELECT id, n, y FROM a ORDER BY n DESC NULLS LAST, id, y

--- NULLS FIRST is the default ascending
SELECT id, n, y FROM a ORDER BY n ASC NULLS FIRST, id, y

--- NULLS FIRST descending
SELECT id, n, y FROM a ORDER BY n DESC NULLS FIRST, id DESC, y

--- FULL JOIN
SELECT a.id, b.id FROM a FULL JOIN b ON a.id = b.id AND b.n > 1

--- FULL OUTER JOIN
SELECT a.id, b.id FROM a FULL OUTER JOIN b ON a.id = b.id

--- NATURAL FULL JOIN
SELECT a.id, b.id FROM a NATURAL FULL JOIN b

--- NATURAL CROSS JOIN is a natural join
SELECT a.id, b.id FROM a NATURAL CROSS JOIN b

--- CROSS JOIN with a condition
SELECT a.id, b.n FROM a CROSS JOIN b ON a.id = b.id

--- CROSS JOIN with USING
SELECT id, b.n FROM a CROSS JOIN b USING (id)

--- a comma with a condition
SELECT a.id, b.n FROM a, b ON a.id = b.id

--- a comma with USING
SELECT id, b.n FROM a, b USING (id)

--- LEFT JOIN without a condition
SELECT a.id, b.id FROM a LEFT JOIN b

--- LEFT JOIN of an empty table without a condition
SELECT a.id, e.id FROM a LEFT JOIN empty AS e

--- JOIN without a condition
SELECT a.id, g.id FROM a JOIN g

--- INNER JOIN without a condition
SELECT a.id, g.id FROM a INNER JOIN g

--- FULL JOIN without a condition
SELECT a.id, e.id FROM empty AS e FULL JOIN a

--- USING with quoted items
SELECT id, a.n FROM a JOIN b USING ("id", [n])

--- USING with items in another case
SELECT id, a.n FROM a JOIN b USING (ID)

--- a table in brackets
SELECT x.id FROM (a AS x)

--- a derived table in two brackets
SELECT s.id FROM ((SELECT id FROM a WHERE n = 1)) AS s

--- a derived table without an alias
SELECT id FROM (SELECT id FROM a WHERE n = 1)

--- a derived table's unaliased expression is named by its text
SELECT "SUM(n)" FROM (SELECT SUM(n) FROM a)

--- a derived table's unaliased aggregate over a star
SELECT "count( * )" FROM (SELECT count( * ) FROM a)

--- a derived table's unaliased aggregate over all rows
SELECT "COUNT(*)" FROM (SELECT COUNT(*) FROM a)

--- a derived table's expression is named by its text
SELECT "n + 1", "n+ 1" FROM (SELECT n + 1 FROM a)

--- a derived table's column in another case
SELECT s."ID" FROM (SELECT ID FROM a) AS s

--- a bracket of joins with an alias
SELECT j.id FROM (a JOIN o ON a.id = o.id AND o.n = 3) AS j

--- INDEXED BY and NOT INDEXED
SELECT id FROM a NOT INDEXED WHERE n = 1

--- NOT INDEXED behind an alias
SELECT x.id FROM a AS x NOT INDEXED WHERE x.n = 1

--- a table function
SELECT value FROM json_each('[3,1,2]') ORDER BY value

--- a table function with an alias
SELECT j.value, a.id FROM a, json_each('[1,2]') AS j WHERE j.value = a.id

--- a schema-qualified name beside a bare one
SELECT main.a.n, z.n FROM main.a, other.a AS z WHERE main.a.id = z.id

--- a star of one of two schemas
SELECT a.*, b.* FROM a, other.b WHERE a.id = b.id

--- three qualifiers
SELECT main.a.id FROM a

--- temp in front
SELECT n FROM temp.hidden

--- main in front of a table that a temporary one hides
--: changes bare names are found in the current schema
SELECT n FROM main.hidden

--- main in front of a hidden table, with no current schema known
--: schema
SELECT n FROM main.hidden

--- the hidden table beside another schema
--: changes bare names are found in the current schema
SELECT h.n, z.n FROM hidden AS h, other.a AS z

--- sqlite_schema beside another schema
SELECT COUNT(*) FROM sqlite_schema AS s, other.a AS z WHERE s.type = 'table'

--- LIMIT with a comma
SELECT id FROM o ORDER BY id LIMIT 1, 2

--- a negative LIMIT is none
SELECT id FROM o ORDER BY id LIMIT -1

--- a negative LIMIT with an offset
SELECT id FROM o ORDER BY id LIMIT -1 OFFSET 2

--- LIMIT as an expression is refused
--: refused
SELECT id FROM o ORDER BY id LIMIT 1 + 1

--- LIMIT as a subquery is refused
--: refused
SELECT id FROM o ORDER BY id LIMIT (SELECT 2)

--- LIMIT in hexadecimal
SELECT id FROM o ORDER BY id LIMIT 0x2

--- LIMIT in brackets
SELECT id FROM o ORDER BY id LIMIT (2)

--- DISTINCT inside an aggregate
SELECT COUNT(DISTINCT n), SUM(DISTINCT n) FROM a

--- FILTER
SELECT COUNT(*) FILTER (WHERE n = 1) AS k FROM a

--- an aggregate with blanks
SELECT COUNT ( * ), COUNT (n), MAX ( n ) FROM a

--- an aggregate of two arguments is a function
SELECT MAX(n, y), MIN(n, 2) FROM a

--- group_concat
SELECT group_concat(name, '; ') FROM (SELECT name FROM a ORDER BY id, n, name)

--- an unaliased aggregate keeps its label
SELECT sum(n), COUNT( n ), Max(n) FROM a

--- VALUES as a source
SELECT column1 FROM (VALUES (1), (3)) AS v

--- CASE without ELSE, nested
SELECT id, CASE WHEN n > 1 THEN CASE y WHEN 10 THEN 'ten' END WHEN n = 1 THEN 'one' END AS y FROM a

--- JSON operators
SELECT '{"a":[1,2]}' -> 'a' ->> 1 AS k FROM g

--- bit operators and shifts
SELECT n & 1, n | 4, ~n, n << 2, n >> 1 FROM a WHERE n & 1 = 1

--- blobs and other literals
SELECT x'41', 0x1F, 1e2, .5, 5. FROM g

--- a cast of several words
SELECT CAST(n AS UNSIGNED BIG INT), CAST(name AS VARYING CHARACTER(10)) FROM a

--- LIKE with a function form
SELECT id FROM a WHERE like('t%', name) AND glob('t*', name)

--- LIKE whose escape is the wildcard
SELECT id FROM a WHERE name NOT LIKE '%o%' ESCAPE '%' OR n = 2

--- EXISTS as a column
SELECT id, EXISTS (SELECT 1 FROM b WHERE b.id = a.id) AS k FROM a

--- a row value compared
SELECT id FROM a WHERE (n, y) < (2, 15)

--- a correlated subquery whose inner alias hides the outer one
SELECT o.id FROM a AS o WHERE o.n = (SELECT MAX(o.n) FROM b AS o WHERE o.id < 3)

--- a subquery that uses the outer alias
SELECT o.id, o.n FROM a AS o WHERE EXISTS (SELECT 1 FROM o AS b WHERE b.id = o.id)

--- ORDER BY an alias that hides a column of the table
SELECT id, -total AS y FROM b ORDER BY y, id

--- ORDER BY an alias inside an expression
SELECT id, total AS k FROM b WHERE total IS NOT NULL ORDER BY k + 1, id

--- GROUP BY an alias
SELECT n AS k, COUNT(*) FROM a GROUP BY k

--- GROUP BY an alias that hides nothing of the table's
SELECT total AS y, COUNT(*) FROM a GROUP BY y ORDER BY 1, 2

--- HAVING with an alias
SELECT id, COUNT(*) AS c FROM a GROUP BY id HAVING c > 1

--- WHERE with an alias
SELECT id, n + 1 AS k FROM a WHERE k = 2

--- rowid
SELECT rowid, id FROM a WHERE rowid = 2

--- a whole statement in brackets is no statement of SQLite's, and a subquery is
SELECT (SELECT 1), (SELECT MAX(id) FROM a)

--- a byte order mark
﻿SELECT id FROM a WHERE n = 1

--- names and texts of several lines in a derived table
SELECT s."k
    l", s.[p
    q] FROM (
    SELECT id AS "k
    l", n AS [p
    q] FROM a
    WHERE name <> 'x
    y'
) AS s

--- an aggregate is named by its text without regard to case
SELECT "max(n)" FROM (SELECT MAX(n) FROM a)

--- an expression in brackets is named by its text
SELECT "(n)", "a.n" FROM (SELECT (n), n AS "a.n" FROM a)

--- aliases that need quotes, in ORDER BY
SELECT id AS "a.id", n AS "n ASC", y AS "q""q" FROM b WHERE n > 0 AND y > 0 ORDER BY "n ASC", "q""q" DESC, "a.id"

--- an alias in another case in ORDER BY
SELECT id, total AS Sum FROM b WHERE total IS NOT NULL ORDER BY SUM, id

--- ORDER BY an expression with an alias that hides a column
SELECT id AS n, n AS id FROM b WHERE n IS NOT NULL ORDER BY -n, id + 0

--- LIMIT as a text
SELECT id FROM o ORDER BY id LIMIT '2'

--- a negative offset is refused
--: refused offset
SELECT id FROM o ORDER BY id LIMIT 2 OFFSET -1

--- a string as table name
SELECT x.id FROM 'a' AS x WHERE x.n = 1

--- an alias called of
SELECT of.k FROM (SELECT 10 AS k) AS of JOIN g

--- a column called end
SELECT end, "end", words.end FROM words WHERE end > 3

--- CASE over a column called end
SELECT CASE WHEN id = 2 THEN "end" END AS k FROM words

--- columns called like words of the grammar
SELECT words.date, interval, "left", row, "values", key, "natural", "exists", "current_user", first FROM words WHERE interval > 5 OR date = 3

--- a column called like the star and one with a dot
SELECT "*", words."*", "a.b", words."a.b" FROM words WHERE "*" > 3

--- a count of a column called like the star
SELECT COUNT("*"), COUNT(*), MAX("a.b") FROM words

--- a schema in another case
SELECT MAIN.a.n, z.n FROM Main.a, OTHER.a AS z WHERE a.id = z.ID

--- the same table of two schemas without aliases
SELECT main.a.n, other.a.n FROM main.a JOIN other.a ON main.a.id = other.a.id

--- a name of three parts in a condition and in an order
SELECT other.b.id FROM other.b, g WHERE other.b.n > main.g.n ORDER BY other.b.id, other.b.n, g.id, g.n

--- tests for NULL behind an operand, in a chain
SELECT id FROM a WHERE n ISNULL AND y NOT NULL OR name notnull and not n = 1 AND n

--- names beside expressions in an IN list
SELECT a.id FROM a JOIN b ON a.id = b.id WHERE a.n IN (a.y, b.n, a.total - 2, 1)
