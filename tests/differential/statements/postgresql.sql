-- Statements for PostgreSQL. The form of this file: see statement_file.h; the tables: see
-- adversarial_schema.cpp.

--- names in double quotes
SELECT "id", "n" FROM "a" WHERE "a"."n" = 1

--- names in capitals without quotes are small
SELECT A.ID, X.N FROM A JOIN B AS X ON A.Id = x.iD

--- a table in capitals
SELECT "A".n, a.n FROM "A", a WHERE "A".id = a.id

--- columns that differ in case
SELECT y, "Y", o.o FROM a, (SELECT 1 AS o) AS o ORDER BY "Y", y

--- a column in capitals qualified
SELECT a."Y", a.y, a."O" FROM a WHERE a."Y" > 60 ORDER BY a."Y", a.y

--- aliases that differ in case
SELECT "O".id, o.id FROM a AS "O", b AS o WHERE "O".id = o.id + 1

--- an alias in capitals hides nothing
SELECT O.id FROM a AS "O", b AS o

--- tables that need quotes
SELECT "two words".n, "order".id, "we""ird".name FROM "two words", "order", "we""ird" WHERE "order".id = "we""ird".id AND "two words".id < 6

--- a column that is a keyword
SELECT "select", "2", "My A", "user", "true" FROM odd WHERE "select" > 2

--- user is a function, "user" a column
SELECT id, "user" FROM odd WHERE "user" > 2 AND user IS NOT NULL ORDER BY "user", id

--- true is a constant, "true" a column
SELECT id, "true", true FROM odd WHERE true AND odd."true" > 4

--- current_date is a function, a quoted one a column
SELECT id, "current_date" FROM odd WHERE current_date > DATE '2020-01-01' AND "current_date" > 4

--- count as a column
SELECT count, odd.count FROM odd WHERE "count" > 4

--- ORDER BY an alias in capitals
SELECT id, total AS "Y" FROM b ORDER BY "Y", id

--- ORDER BY an alias in small letters beside a column in capitals
SELECT id, total AS y FROM b ORDER BY y, id

--- an alias that is a number must not become an ordinal
SELECT id AS "2", y FROM b WHERE y IS NOT NULL ORDER BY "2", y

--- an alias called user
SELECT id AS "user", y FROM b WHERE y IS NOT NULL ORDER BY "user", y

--- an alias with a blank
SELECT id AS "My A", n FROM b ORDER BY "My A", n

--- a source alias with a blank
SELECT "My A".id FROM a AS "My A" WHERE "My A".n = 1

--- an alias without AS that is a word of the grammar
SELECT id value, n second_no FROM a

--- ISNULL is no alias
SELECT id, n ISNULL FROM a

--- NOTNULL is no alias
SELECT id, n NOTNULL AS k FROM a

--- COLLATE is no alias
SELECT name COLLATE "C" FROM a

--- an interval's field is no alias
SELECT INTERVAL '1' DAY FROM g

--- an interval with fields
SELECT INTERVAL '1 2:03' DAY TO HOUR AS k FROM g

--- typed literals
SELECT DATE '2024-02-29', TIME '10:00', TIMESTAMP '2024-02-29 10:00' FROM g

--- casts with colons
SELECT id::text, n::numeric(5, 2), '3'::int + 1 FROM a WHERE id::text = '2'

--- casts in a condition
SELECT id FROM a WHERE n::text || 'x' = '1x' AND (y + 1)::int = 21

--- concatenation
SELECT id, name || '-' || n FROM a WHERE name || 'x' = 'twox'

--- an escape string
SELECT E'a\'b\n', E'\\' FROM g WHERE name <> E'it\'s'

--- a dollar-quoted text
SELECT $$it's$$, $x$ $$ -- $x$ FROM g

--- a text in two parts
SELECT 'one'
  'two' AS k FROM g

--- a Unicode text and name
SELECT U&'d\0061t' AS k FROM a WHERE U&"\0069d" = 1

--- bit and hexadecimal strings
SELECT B'101', X'1F' FROM g

--- nested comments
SELECT id /* one /* two */ three */ FROM a WHERE n = 1 /* /* */ */

--- BETWEEN SYMMETRIC
SELECT id FROM a WHERE y BETWEEN SYMMETRIC 15 AND 5

--- NOT BETWEEN SYMMETRIC
SELECT id FROM a WHERE y NOT BETWEEN SYMMETRIC 15 AND 6 AND id > 0

--- ILIKE
SELECT id FROM a WHERE name ILIKE 'T%' OR name NOT ILIKE '%E%'

--- SIMILAR TO
SELECT id FROM a WHERE name SIMILAR TO '(one|two)' OR name NOT SIMILAR TO '%[a-z]%'

--- regular expressions
SELECT id FROM a WHERE name ~ '^t' OR name !~* 'O'

--- IS DISTINCT FROM
SELECT id FROM a WHERE n IS DISTINCT FROM 1 AND n IS NOT DISTINCT FROM NULL

--- IS TRUE and IS UNKNOWN
SELECT id FROM a WHERE (n = 1) IS TRUE OR (n = 1) IS UNKNOWN AND (y = 1) IS NOT TRUE

--- a row is null
SELECT id FROM a WHERE (n, name) IS NULL OR ROW(n, y) IS NOT NULL

--- ANY and ALL
SELECT id FROM a WHERE id = ANY (SELECT id FROM b) AND n <= ALL (SELECT n FROM g WHERE n > 2)

--- ANY with an array
SELECT id FROM a WHERE id = ANY (ARRAY[1, 3]) OR id <> ALL ('{1,2,3,4}'::int[])

--- LIKE ANY
SELECT id FROM a WHERE name LIKE ANY (ARRAY['t%', 'o%'])

--- rows compared
SELECT id FROM a WHERE (n, y) < (2, 15) OR ROW(id, n) = ROW(5, 3)

--- OVERLAPS
SELECT id FROM a WHERE (DATE '2020-01-01', DATE '2020-02-01') OVERLAPS (DATE '2020-01-15', DATE '2020-03-01') AND n = 1

--- AT TIME ZONE
SELECT TIMESTAMP '2020-01-01 10:00' AT TIME ZONE 'UTC' AT TIME ZONE 'UTC' FROM g

--- subscripts
SELECT (ARRAY[3, 1, 2])[2], (ARRAY[1, 2, 3])[1:2] FROM g

--- JSON operators
SELECT '{"a": [1, 2]}'::json -> 'a' ->> 1 AS k FROM a WHERE '{"b": 1}'::jsonb ? 'b' AND '{"b": 1}'::jsonb @> '{"b": 1}'

--- POSITION, SUBSTRING, TRIM, OVERLAY, EXTRACT
SELECT POSITION('o' IN name), SUBSTRING(name FROM 2 FOR 1), TRIM(BOTH 't' FROM name), OVERLAY(name PLACING 'x' FROM 1), EXTRACT(YEAR FROM DATE '2024-01-01') FROM a

--- IN inside POSITION in a condition
SELECT id FROM a WHERE POSITION('o' IN name) = 1 AND n = 3

--- NULLS LAST
SELECT id, n, y FROM a ORDER BY n DESC NULLS LAST, id, y

--- NULLS FIRST
SELECT id, n, y FROM a ORDER BY n NULLS FIRST, id, y

--- NULLS LAST is the default ascending
SELECT id, n, y FROM a ORDER BY n ASC NULLS LAST, id, y

--- NULLS FIRST is the default descending
SELECT id, n, y FROM a ORDER BY n DESC NULLS FIRST, id, y

--- ORDER BY USING
SELECT id, n, y FROM a ORDER BY n USING >, id USING < NULLS FIRST, y

--- COLLATE in ORDER BY
SELECT id, name FROM b WHERE name IS NOT NULL ORDER BY name COLLATE "C" DESC, id

--- FULL JOIN
SELECT a.id, b.id FROM a FULL JOIN b ON a.id = b.id

--- FULL OUTER JOIN
SELECT a.id, b.id FROM a FULL OUTER JOIN b ON a.id = b.id

--- NATURAL FULL JOIN
SELECT a.id, b.id FROM a NATURAL FULL JOIN b

--- FULL JOIN with USING
SELECT id, a.n, b.n FROM a FULL JOIN b USING (id)

--- USING with items in capitals
SELECT id, a.n FROM a JOIN b USING ("Y", ID)

--- USING with an alias is refused
--: refused
SELECT j.id FROM a JOIN b USING (id) AS j

--- a deferred ON
SELECT a.id, b.n, o.n FROM a JOIN b JOIN o ON b.id = o.id ON a.id = b.id

--- a deferred ON in left joins
SELECT a.id, b.n, o.n FROM a LEFT JOIN b LEFT JOIN o ON b.id = o.id AND o.n = 1 ON a.id = b.id

--- a bracket of joins with an alias
SELECT j.total FROM (a JOIN (SELECT id AS k, n AS v FROM o) AS o ON a.id = o.k AND o.v = 3) AS j

--- a derived table with column names
SELECT s.k, s.v FROM (SELECT id, n FROM a) AS s (k, v) WHERE s.k > 2

--- a table with column names
SELECT x.k, x.y FROM a AS x (k, v) WHERE x.v = 1 OR x.k = 5

--- a derived table in two brackets
SELECT s.id FROM ((SELECT id FROM a WHERE n = 1)) AS s

--- LATERAL
SELECT a.id, s.n FROM a, LATERAL (SELECT b.n FROM b WHERE b.id = a.id) AS s

--- LEFT JOIN LATERAL
SELECT a.id, s.n FROM a LEFT JOIN LATERAL (SELECT MAX(b.n) AS n FROM b WHERE b.id < a.id) AS s ON true

--- ONLY
SELECT x.id FROM ONLY a AS x WHERE x.n = 1

--- ONLY in brackets
SELECT id FROM ONLY (a) WHERE n = 1

--- ONLY as the name of an alias
SELECT "only".id FROM a AS "only"

--- a star behind a table
SELECT x.id FROM a * AS x WHERE x.n = 1

--- VALUES as a source
SELECT v.k FROM (VALUES (1, 'x'), (3, 'y')) AS v (k, t) WHERE v.t = 'y'

--- a table function
SELECT s, s.s FROM generate_series(1, 3) AS s WHERE s > 1

--- a table function with ordinality
SELECT x.v, x.i FROM unnest(ARRAY['p', 'q']) WITH ORDINALITY AS x (v, i) ORDER BY x.i DESC

--- a table function with typed columns
SELECT r.k FROM json_to_recordset('[{"k": 1}, {"k": 3}]') AS r (k int) WHERE r.k > 1

--- ROWS FROM
SELECT x.p, x.q FROM ROWS FROM (generate_series(1, 2), generate_series(5, 7)) AS x (p, q)

--- TABLESAMPLE of everything
SELECT x.id FROM a AS x TABLESAMPLE SYSTEM (100) WHERE x.n = 1

--- a whole row
SELECT a FROM a WHERE a.n = 1

--- a whole row of an alias called like a column
SELECT y FROM g AS y

--- a field of a composite
SELECT (x).n, (x).* FROM (SELECT a AS x FROM a) AS s

--- a whole row in a function
SELECT COUNT(a), COUNT(a.*) FROM a

--- public in front
SELECT public.a.n, a.id FROM public.a WHERE public.a.n > 1

--- public in front, beside another schema
SELECT a.n, z.n FROM public.a JOIN other.b AS z ON z.id = a.id

--- three qualifiers
SELECT joinery.public.a.n FROM joinery.public.a WHERE joinery.public.a.n = 1

--- the catalogue beside another schema
SELECT c.relname FROM pg_class AS c, other.o AS z WHERE c.relname = 'odd' AND z.id = 1

--- the catalogue alone
SELECT relname FROM pg_class WHERE relname = 'odd'

--- information_schema
SELECT t.table_name FROM information_schema.tables AS t WHERE t.table_name = 'odd'

--- public in front of a table that a temporary one hides
--: changes bare names are found in the current schema
SELECT n FROM public.hidden

--- public in front of a hidden table, with no current schema known
--: schema
SELECT n FROM public.hidden

--- the hidden table beside another schema
--: changes bare names are found in the current schema
SELECT h.n, z.n FROM hidden AS h, other.a AS z

--- pg_temp in front
SELECT n FROM pg_temp.hidden

--- DISTINCT ON is refused
--: refused
SELECT DISTINCT ON (id) id, n FROM a ORDER BY id, n

--- FOR UPDATE is refused
--: refused
SELECT id FROM a FOR UPDATE

--- SELECT without columns is refused
--: refused
SELECT FROM a

--- LIMIT ALL is none
SELECT id FROM o ORDER BY id LIMIT ALL

--- LIMIT NULL is none
SELECT id FROM o ORDER BY id LIMIT NULL OFFSET 2

--- OFFSET in front of LIMIT
SELECT id FROM o ORDER BY id OFFSET 1 LIMIT 2

--- OFFSET alone
SELECT id FROM o ORDER BY id OFFSET 2

--- OFFSET ROWS and FETCH
SELECT id FROM o ORDER BY id OFFSET 1 ROWS FETCH FIRST 2 ROWS ONLY

--- FETCH NEXT
SELECT id FROM o ORDER BY id FETCH NEXT 2 ROWS ONLY

--- FETCH FIRST ROW
SELECT id FROM o ORDER BY id FETCH FIRST ROW ONLY

--- FETCH in front of OFFSET
SELECT id FROM o ORDER BY id FETCH FIRST 2 ROWS ONLY OFFSET 1

--- FETCH with a bracket
SELECT id FROM o ORDER BY id FETCH FIRST (2) ROWS ONLY

--- WITH TIES is refused
--: refused
SELECT total FROM a ORDER BY total FETCH FIRST 2 ROWS WITH TIES

--- LIMIT as an expression is refused
--: refused
SELECT id FROM o ORDER BY id LIMIT 1 + 1

--- LIMIT with a cast is refused
--: refused
SELECT id FROM o ORDER BY id LIMIT '2'::int

--- a whole statement in brackets
(SELECT id FROM a WHERE n = 1)

--- a whole statement in brackets with a LIMIT behind it is refused
--: refused
(SELECT id FROM a WHERE n = 1) LIMIT 1

--- an aggregate in capitals
SELECT COUNT(*), Sum(n), mAX(y) FROM a

--- an aggregate with blanks
SELECT COUNT ( * ), COUNT (n), MAX ( n ) FROM a

--- an aggregate with an order
SELECT string_agg(name, ',' ORDER BY id DESC, n) FROM a

--- FILTER
SELECT COUNT(*) FILTER (WHERE n = 1) AS k FROM a

--- WITHIN GROUP
SELECT percentile_disc(0.5) WITHIN GROUP (ORDER BY y) AS y FROM a

--- ROLLUP
SELECT id, n, COUNT(*) FROM a GROUP BY ROLLUP (id, n)

--- GROUPING SETS
SELECT id, n, COUNT(*) FROM a GROUP BY GROUPING SETS ((id), (n), ())

--- an empty grouping set
SELECT COUNT(*) FROM a GROUP BY ()

--- GROUP BY in brackets
SELECT id, n, COUNT(*) FROM a GROUP BY (id), (n)

--- GROUP BY DISTINCT
SELECT id, COUNT(*) FROM a GROUP BY DISTINCT id

--- GROUP BY an alias
SELECT id + n AS k, COUNT(*) FROM a GROUP BY k

--- GROUP BY prefers the column to the alias
SELECT n AS id, COUNT(*) FROM a GROUP BY id, n

--- an operator with a schema
SELECT id FROM a WHERE n OPERATOR(pg_catalog.=) 1

--- a function with a schema
SELECT pg_catalog.upper(name) FROM a WHERE pg_catalog.abs(n) = 1

--- named arguments
SELECT make_interval(days => 2) FROM g

--- a cast in a function and a CASE
SELECT CASE WHEN n::text = '1' THEN 'p'::text ELSE name::varchar(2) END AS n FROM a

--- bit operators, powers and modulo
SELECT n & 1, n | 4, n # 1, ~n, n << 2, n ^ 2, n % 2, |/ 4.0, @ -5 FROM a

--- a correlated subquery whose inner alias hides the outer one
SELECT o.id FROM a AS o WHERE o.n = (SELECT MAX(o.n) FROM b AS o WHERE o.id < 3)

--- a subquery that uses the outer alias
SELECT o.id, o.n FROM a AS o WHERE EXISTS (SELECT 1 FROM o AS b WHERE b.id = o.id)

--- an array from a subquery
SELECT ARRAY(SELECT n FROM g ORDER BY n) AS k FROM g

--- IN with texts that need a type
SELECT id FROM a WHERE id IN ('1', '2') AND name IN ('one'::text, 'two')

--- LIKE with a concatenated pattern
SELECT id FROM a WHERE name LIKE '%' || 'w' || '%' AND 'x' || name LIKE 'xt%'

--- a negative number on the right
SELECT id FROM a WHERE n > -1 AND n - -1 = 2 AND +n = 1

--- a carriage return ends a comment
SELECT id FROM a -- comment
WHERE n = 1

--- INTO is refused
--: refused
SELECT id INTO TEMPORARY refused_into FROM a

--- the identifiers of another alphabet
SELECT id AS größe, n AS "Größe" FROM a ORDER BY größe, "Größe", y

--- a long name with a dollar
SELECT id AS a$b FROM a ORDER BY a$b

--- a window with a frame
SELECT id, SUM(n) OVER (ORDER BY id, n, y ROWS BETWEEN 1 PRECEDING AND CURRENT ROW) AS y FROM a

--- GREATEST, LEAST, COALESCE, NULLIF
SELECT GREATEST(n, 2), LEAST(n, y), COALESCE(n, y), NULLIF(n, 1) FROM a WHERE COALESCE(n, 1) = 1

--- current_schema and session values
SELECT CURRENT_SCHEMA, CURRENT_CATALOG, SESSION_USER = CURRENT_USER FROM g

--- names and texts of several lines in a derived table
SELECT s."k
    l", s.m FROM (
    SELECT id AS "k
    l", $$p
    q$$ || E'r\'
    s' AS m FROM a
    WHERE name <> $x$t
    u$x$ /* c
    /* d
    */ e */
) AS s

--- an aggregate is named by its function
SELECT s.max, s.count FROM (SELECT MAX(n), COUNT(*) FROM a) AS s

--- a cast is named by its column, a CASE by its word
SELECT s.n, s."case", s."coalesce" FROM (SELECT n::text, CASE WHEN y = 5 THEN 1 END, COALESCE(y, 1) FROM a) AS s

--- an expression has no name of its own
SELECT s."?column?" FROM (SELECT n + 1 FROM a) AS s

--- aliases that need quotes, in ORDER BY
SELECT id AS "a.id", n AS "n ASC", y AS "q""q" FROM b WHERE n > 0 AND y > 0 ORDER BY "n ASC", "q""q" DESC, "a.id"

--- an alias without quotes is folded
SELECT id, total AS Sum FROM b WHERE total IS NOT NULL ORDER BY SUM, id

--- an alias in capitals beside one that is folded
SELECT id AS "K", total AS k FROM b WHERE total IS NOT NULL ORDER BY k, "K"

--- ORDER BY an expression takes the columns
SELECT id AS n, n AS id FROM b WHERE n IS NOT NULL ORDER BY -n, id + 0

--- LIMIT as a text keeps its value or is refused
--: refused
SELECT id FROM o ORDER BY id LIMIT '2'

--- LIMIT ALL with an offset
SELECT id FROM o ORDER BY id LIMIT ALL OFFSET 2

--- OFFSET ROW and FETCH NEXT ROW
SELECT id FROM o ORDER BY id OFFSET 1 ROW FETCH NEXT ROW ONLY

--- OFFSET in brackets
SELECT id FROM o ORDER BY id LIMIT 2 OFFSET (1)

--- OFFSET NULL is none
SELECT id FROM o ORDER BY id LIMIT 2 OFFSET NULL

--- an alias called of
SELECT "of".k FROM (SELECT 10 AS k) AS of CROSS JOIN g

--- a column called interval
SELECT interval, "interval", words.interval FROM words WHERE interval > 5 OR interval BETWEEN 1 AND 5

--- columns called like words of the grammar
SELECT date, "left", row, words.values, "end", key, "natural", words.exists, "current_user", first FROM words WHERE date = 3 OR "end" > 4

--- a column called like the star and one with a dot
SELECT "*", words."*", "a.b", words."a.b" FROM words WHERE "*" > 3

--- a count of a column called like the star
SELECT COUNT("*"), COUNT(*), MAX("a.b") FROM words

--- a bare alias that is a reserved word
SELECT id user, n true, y "end" FROM a WHERE n = 1

--- the same table of two schemas
SELECT x.n, a.n FROM public.a AS x JOIN other.a ON x.id = other.a.id

--- a name of three parts in a condition and in an order
SELECT other.b.id FROM other.b, g WHERE other.b.n > public.g.n ORDER BY other.b.id, other.b.n, g.id, g.n
