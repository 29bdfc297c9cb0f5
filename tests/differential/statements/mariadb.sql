-- Statements for MariaDB. The form of this file: see statement_file.h; the tables: see
-- adversarial_schema.cpp.

--- names in backticks
SELECT `id`, `n` FROM `a` WHERE `a`.`n` = 1

--- columns in another case
SELECT a.ID, x.N FROM a JOIN b AS x ON a.Id = x.iD

--- a table in capitals is another one
SELECT A.n, a.n FROM A, a WHERE A.id = a.id

--- aliases that differ in case
SELECT O.id, o.id FROM a AS O, b AS o WHERE O.id = o.id + 1

--- an alias called like a table in capitals
SELECT O.id, O.n FROM a AS O

--- tables that need quotes
SELECT `two words`.n, `order`.id, `we"ird`.name FROM `two words`, `order`, `we"ird` WHERE `order`.id = `we"ird`.id AND `two words`.id < 6

--- a column that is a keyword
SELECT `select`, `2`, `My A`, `user`, `true` FROM odd WHERE `select` > 2

--- columns that are keywords, qualified
SELECT odd.select, odd.`2`, odd.true FROM odd WHERE odd.select > 2 ORDER BY odd.`2`, odd.id

--- TRUE beside a column of that name
SELECT id, `true`, true FROM odd WHERE true AND odd.`true` > 4

--- CURRENT_DATE beside a column of that name
SELECT id, `current_date` FROM odd WHERE current_date > '2020-01-01' AND `current_date` > 4

--- count as a column
SELECT count, odd.count FROM odd WHERE `count` > 4

--- strings in double quotes
SELECT "text", "it's", "say ""x""" FROM a WHERE name = "two"

--- a string in double quotes at the left
SELECT id FROM a WHERE "two" = name

--- backslashes in texts
SELECT 'it\'s', 'a\\', "\"", 'x\ny', '\%' FROM g

--- adjacent texts are one
SELECT 'one' 'two' AS k, "p" "q" FROM g WHERE name = 'ge' 'e'

--- a text with its character set
SELECT _utf8mb4'x' AS k, N'y' AS l, _latin1 'z' FROM g

--- hexadecimal and bit literals
SELECT x'41', 0x41, b'101', 0b101 FROM g

--- a name that begins with a digit
SELECT 1a FROM (SELECT 5 AS 1a) AS s

--- a name that looks like a number
SELECT s.1e, s.2x FROM (SELECT 5 AS 1e, 6 AS 2x) AS s

--- a minus in front of a minus is no comment
SELECT 5--3 AS k FROM g

--- a comment needs a blank
SELECT 5-- 3
FROM g

--- a comment with a hash
SELECT id # comment
FROM a # another
WHERE n = 1

--- a comment with code is refused
--: refused
SELECT id FROM a /*! WHERE n = 1 */

--- a comment with code for MariaDB is refused
--: refused
SELECT id FROM a /*M! WHERE n = 1 */

--- a comment with a version is refused
--: refused
SELECT id /*!50000 , n */ FROM a

--- an alias in quotes
SELECT id AS 'k', n "v", y AS `My A` FROM b ORDER BY k, v, `My A`

--- an alias that is a number must not become an ordinal
SELECT id AS `2`, y FROM b WHERE y IS NOT NULL ORDER BY `2`, y

--- an alias called user
SELECT id AS user, y FROM b WHERE y IS NOT NULL ORDER BY user, y

--- a source alias with a blank
SELECT `My A`.id FROM a AS `My A` WHERE `My A`.n = 1

--- FULL is an alias
SELECT FULL.id, b.n FROM a FULL JOIN b USING (id)

--- FULL is an alias in another letter case
SELECT Full.n FROM a Full JOIN b ON Full.id = b.id

--- LEFT JOIN with an alias called like a join word
SELECT full.id, b.id FROM a AS full LEFT JOIN b ON full.id = b.id

--- the safe equals sign
SELECT id FROM a WHERE n <=> NULL OR n <=> 1

--- && and || are words of logic
SELECT id FROM a WHERE n = 1 && y = 20 || id = 4

--- || inside brackets and with AND
SELECT id FROM a WHERE (n = 1 || y = 10) AND total = 5

--- || without brackets beside AND
SELECT id FROM a WHERE n = 3 || y = 20 AND total = 7

--- XOR
SELECT id FROM a WHERE n = 1 XOR y = 20 XOR id < 4

--- XOR beside AND and OR
SELECT id FROM a WHERE n = 1 XOR id < 4 AND y > 5 OR total = 1

--- an exclamation mark
SELECT id FROM a WHERE !(n = 1) AND ! y = 0

--- NOT binds looser than a comparison, an exclamation mark closer
SELECT id, NOT n = 1, ! n = 1 FROM a WHERE NOT n = 2 AND ! n = 0

--- comparisons in a row
SELECT id FROM a WHERE n = n = 1 AND 3 > 2 > 0

--- DIV and MOD
SELECT y DIV 3, y MOD 3, y % 3 FROM a WHERE y DIV 10 = 1

--- REGEXP and RLIKE
SELECT id FROM a WHERE name REGEXP '^t' OR name NOT RLIKE 'o'

--- SOUNDS LIKE
SELECT id FROM a WHERE name SOUNDS LIKE 'to'

--- LIKE BINARY and COLLATE
SELECT id FROM a WHERE name LIKE BINARY 'T%' OR name LIKE 'T%' COLLATE utf8mb4_bin OR BINARY name = 'two'

--- COLLATE without an alias
SELECT name COLLATE utf8mb4_bin FROM a

--- IS TRUE and IS UNKNOWN
SELECT id FROM a WHERE (n = 1) IS TRUE OR (n = 1) IS UNKNOWN AND y IS NOT FALSE

--- a bare column as a condition
SELECT id FROM a WHERE n AND y

--- a bare column with NOT
SELECT id FROM a WHERE NOT (n - 1) OR n - 2

--- IN with a doubly bracketed subquery
SELECT id FROM a WHERE id IN ((SELECT id FROM b))

--- ANY and ALL
SELECT id FROM a WHERE id = ANY (SELECT id FROM b) AND n <= ALL (SELECT n FROM g WHERE n > 2)

--- intervals
SELECT DATE '2024-01-31' + INTERVAL 1 MONTH, INTERVAL 1 DAY + '2024-01-01', DATE_ADD('2024-01-01', INTERVAL '1:2' HOUR_MINUTE) FROM g

--- a full-text search stays text: its words stay words
SELECT POSITION('o' IN name), SUBSTRING(name FROM 2 FOR 1), TRIM(BOTH 't' FROM name), EXTRACT(YEAR FROM '2024-01-01') FROM a

--- IN inside POSITION in a condition
SELECT id FROM a WHERE POSITION('o' IN name) = 1 AND n = 3

--- GROUP_CONCAT
SELECT GROUP_CONCAT(DISTINCT name ORDER BY name DESC SEPARATOR '; ') AS k FROM a

--- CONVERT, CHAR and casts
SELECT CONVERT(name USING utf8mb4), CONVERT(n, CHAR), CAST(y AS UNSIGNED), CHAR(65 USING utf8mb4) FROM a

--- variables
SELECT @x := 1 AS k, @@session.sql_mode = 'x' AS l FROM g

--- JOIN without a condition
SELECT a.id, g.id FROM a JOIN g

--- INNER JOIN without a condition
SELECT a.id, g.id FROM a INNER JOIN g

--- CROSS JOIN with a condition
SELECT a.id, b.n FROM a CROSS JOIN b ON a.id = b.id

--- CROSS JOIN with USING
SELECT id, b.n FROM a CROSS JOIN b USING (id)

--- STRAIGHT_JOIN
SELECT a.id, b.n FROM a STRAIGHT_JOIN b ON a.id = b.id

--- STRAIGHT_JOIN without a condition
SELECT a.id, g.n FROM a STRAIGHT_JOIN g

--- a deferred ON
SELECT a.id, b.n, o.n FROM a LEFT JOIN b LEFT JOIN o ON b.id = o.id AND o.n = 1 ON a.id = b.id

--- joins without a condition in front of one with
SELECT a.id, b.n, o.n FROM a JOIN b JOIN o ON a.id = o.id

--- a bracket of commas
SELECT a.id, b.n, o.n FROM a LEFT JOIN (b, o) ON a.id = b.id AND b.id = o.id

--- a table in brackets
SELECT x.id FROM (a AS x)

--- a table in two brackets
SELECT a.id FROM ((a)) WHERE n = 1

--- an ODBC outer join is refused
--: refused
SELECT a.id, b.id FROM {OJ a LEFT OUTER JOIN b ON a.id = b.id}

--- USE INDEX
SELECT x.id FROM a AS x USE INDEX () WHERE x.n = 1

--- USE INDEX in a join
SELECT a.id, b.n FROM a USE INDEX () JOIN b USE INDEX FOR JOIN () ON a.id = b.id

--- a derived table in two brackets
SELECT s.id FROM ((SELECT id FROM a WHERE n = 1)) AS s

--- a derived table's unaliased aggregate is named by its text
SELECT `COUNT(*)`, `SUM(n)` FROM (SELECT COUNT(*), SUM(n) FROM a) AS s

--- a derived table's aggregate with blanks is named by its text
SELECT `count( * )` FROM (SELECT count( * ) FROM a) AS s

--- a derived table's expression is named by its text
SELECT `n + 1` FROM (SELECT n + 1 FROM a) AS s

--- DUAL
SELECT 1 + 1 AS k FROM DUAL

--- DUAL with a condition
SELECT 1 AS k FROM dual WHERE 1 = 1

--- the main schema in front
SELECT joinery.a.n, a.id FROM joinery.a WHERE joinery.a.n > 1

--- the main schema in front, beside another schema
SELECT a.n, z.n FROM joinery.a JOIN other.b AS z ON z.id = a.id

--- tables of two schemas of the same name
SELECT joinery.a.n, other.a.n FROM joinery.a, other.a WHERE joinery.a.id = other.a.id

--- the temporary table is meant with a qualifier too
SELECT n FROM joinery.hidden

--- the hidden table beside another schema
SELECT h.n, z.n FROM hidden AS h, other.a AS z

--- information_schema
SELECT t.table_name AS k FROM information_schema.tables AS t WHERE t.table_name = 'odd'

--- DISTINCTROW
SELECT DISTINCTROW id, n FROM a

--- SQL_NO_CACHE and its like are refused
--: refused
SELECT SQL_NO_CACHE id FROM a

--- HIGH_PRIORITY is refused
--: refused
SELECT HIGH_PRIORITY id FROM a

--- SQL_CALC_FOUND_ROWS is refused
--: refused
SELECT SQL_CALC_FOUND_ROWS id FROM a LIMIT 1

--- STRAIGHT_JOIN behind SELECT is refused
--: refused
SELECT STRAIGHT_JOIN a.id FROM a JOIN b ON a.id = b.id

--- FOR UPDATE is refused
--: refused
SELECT id FROM a FOR UPDATE

--- LOCK IN SHARE MODE is refused
--: refused
SELECT id FROM a LOCK IN SHARE MODE

--- INTO a variable is refused
--: refused
SELECT id INTO @x FROM a LIMIT 1

--- PROCEDURE is refused
--: refused
SELECT id FROM a PROCEDURE ANALYSE()

--- GROUP BY WITH ROLLUP
SELECT id, n, COUNT(*) FROM a GROUP BY id, n WITH ROLLUP

--- GROUP BY with a direction
SELECT id, COUNT(*) FROM a GROUP BY id DESC

--- GROUP BY an alias
SELECT id + n AS k, COUNT(*) FROM a GROUP BY k

--- GROUP BY an alias that is a column too
SELECT id AS n, COUNT(*) FROM a GROUP BY id ORDER BY 1

--- HAVING with an alias
SELECT id, COUNT(*) AS c FROM a GROUP BY id HAVING c > 1

--- HAVING with an alias called like a column
SELECT id, COUNT(*) AS y FROM a GROUP BY id HAVING y > 1

--- HAVING without an aggregate
SELECT id, n FROM a HAVING n = 1

--- ORDER BY an alias that hides a column
SELECT id, -total AS y FROM b ORDER BY y, id

--- ORDER BY an alias inside an expression
SELECT id, total AS k FROM b WHERE total IS NOT NULL ORDER BY k + 1, id

--- ORDER BY NULL
SELECT id, COUNT(*) FROM a GROUP BY id ORDER BY NULL

--- LIMIT with a comma
SELECT id FROM o ORDER BY id LIMIT 1, 2

--- LIMIT with the largest number
SELECT id FROM o ORDER BY id LIMIT 2, 18446744073709551615

--- LIMIT ROWS EXAMINED is refused
--: refused
SELECT id FROM o ORDER BY id LIMIT 2 ROWS EXAMINED 1000

--- OFFSET ROWS and FETCH
SELECT id FROM o ORDER BY id OFFSET 1 ROWS FETCH FIRST 2 ROWS ONLY

--- FETCH FIRST ROW
SELECT id FROM o ORDER BY id FETCH FIRST ROW ONLY

--- OFFSET alone
SELECT id FROM o ORDER BY id OFFSET 2 ROWS

--- WITH TIES is refused
--: refused
SELECT total FROM a ORDER BY total FETCH FIRST 2 ROWS WITH TIES

--- a whole statement in brackets
(SELECT id FROM a WHERE n = 1)

--- a whole statement in brackets with a LIMIT behind it is refused
--: refused
(SELECT id FROM a WHERE n = 1) LIMIT 1

--- an aggregate with blanks inside
SELECT COUNT( * ), COUNT( n ), MAX(n ) FROM a

--- an unaliased aggregate keeps its label
SELECT sum(n), Count(n), MAX(n) FROM a

--- COUNT DISTINCT over two columns
SELECT COUNT(DISTINCT id, n) FROM a

--- BIT_AND, STD and JSON aggregates
SELECT BIT_OR(n), BIT_AND(id), JSON_ARRAYAGG(id) FROM o

--- bit operators and shifts
SELECT n & 1, n | 4, ~n & 7, n << 2, n >> 1, n ^ 2 FROM a WHERE n & 1 = 1

--- JSON functions
SELECT JSON_EXTRACT('{"a": [1, 2]}', '$.a[1]') AS k, JSON_VALUE('{"b": "x"}', '$.b') FROM g

--- a JSON table
SELECT j.k FROM JSON_TABLE('[{"k": 1}, {"k": 3}]', '$[*]' COLUMNS (k INT PATH '$.k')) AS j WHERE j.k > 1

--- VALUES as a source
SELECT s.1 FROM (VALUES (1), (3)) AS s

--- NULLS in the order
SELECT id, n, y FROM a ORDER BY n IS NULL, n, id, y

--- a correlated subquery whose inner alias hides the outer one
SELECT o.id FROM a AS o WHERE o.n = (SELECT MAX(o.n) FROM b AS o WHERE o.id < 3)

--- a subquery that uses the outer alias
SELECT o.id, o.n FROM a AS o WHERE EXISTS (SELECT 1 FROM b WHERE b.id = o.id)

--- CASE without ELSE, nested
SELECT id, CASE WHEN n > 1 THEN CASE y WHEN 10 THEN 'ten' END WHEN n = 1 THEN 'one' END AS y FROM a

--- IF and IFNULL
SELECT IF(n = 1, y, total), IFNULL(n, 0) FROM a WHERE IF(n IS NULL, 1, 0) = 1

--- a row compared
SELECT id FROM a WHERE (n, y) < (2, 15) OR ROW(id, n) = ROW(5, 3)

--- MEMBER words, LEFT and RIGHT as functions
SELECT LEFT(name, 2), RIGHT(name, 1), REPLACE(name, 'o', '0'), INSERT(name, 1, 1, 'x') FROM a WHERE LEFT(name, 1) = 't'

--- VALUES and DEFAULT as functions
SELECT DATABASE(), USER() IS NULL, CURRENT_USER IS NULL, SCHEMA() FROM g

--- a table with a system time is text
SELECT id FROM a WHERE n BETWEEN 1 AND 2 AND id BETWEEN 1 AND 3

--- dollar and underscore in names
SELECT id AS a$b, n AS _c FROM a ORDER BY a$b, _c, y

--- names of another alphabet
SELECT id AS größe, n AS `Größe 2` FROM a ORDER BY größe, `Größe 2`, y

--- a window with a frame
SELECT id, SUM(n) OVER (ORDER BY id, n, a.y ROWS BETWEEN 1 PRECEDING AND CURRENT ROW) AS k FROM a

--- names and texts of several lines in a derived table
SELECT s.`k
    l`, s.m FROM (
    SELECT id AS `k
    l`, 'p\'
    q' 'r' AS m FROM a
    WHERE name <> "t\"
    u" # c
) AS s

--- an aggregate is named by its text without regard to case
SELECT `max(n)`, s.`N + 1` FROM (SELECT MAX(n), n + 1 FROM a) AS s

--- a text is named by itself
SELECT s.x, s.p FROM (SELECT 'x', "p") AS s

--- aliases that need quotes, in ORDER BY
SELECT id AS `a.id`, n AS `n ASC`, y AS `q``q` FROM b WHERE n > 0 AND y > 0 ORDER BY `n ASC`, `q``q` DESC, `a.id`

--- an alias in another case in ORDER BY
SELECT id, total AS Sumx FROM b WHERE total IS NOT NULL ORDER BY SUMX, id

--- an alias called like a function
SELECT id, total AS Sum FROM b WHERE total IS NOT NULL ORDER BY `Sum`, id

--- ORDER BY an expression with an alias that hides a column
SELECT id AS n, n AS id FROM b WHERE n IS NOT NULL ORDER BY -n, id + 0

--- an alias called of
SELECT of.k FROM (SELECT 10 AS k) AS of JOIN g

--- a column called end
SELECT end, `end`, words.end FROM words WHERE end > 3

--- CASE over a column called end
SELECT CASE WHEN id = 2 THEN `end` END AS k FROM words

--- columns called like words of the grammar
SELECT date, `interval`, `left`, row, `values`, words.key, `natural`, words.exists, `current_user`, first FROM words WHERE date = 3 OR words.interval > 5

--- a column called like the star and one with a dot
SELECT `*`, words.`*`, `a.b`, words.`a.b` FROM words WHERE `*` > 3

--- a count of a column called like the star
SELECT COUNT(`*`), COUNT(*), MAX(`a.b`) FROM words

--- a name of three parts in a condition and in an order
SELECT other.b.id FROM other.b, g WHERE other.b.n > joinery.g.n ORDER BY other.b.id, other.b.n, g.id, g.n

--- blanks around the points of a name
SELECT a . id, joinery . a . n FROM joinery . a WHERE a . n = 1

--- CROSS JOIN with a condition beside a comma
SELECT a.id, b.n, g.n FROM g, a CROSS JOIN b ON a.id = b.id AND a.n = b.n

--- a bracket of a comma list at the left
SELECT a.id, b.n, o.n FROM (a, b) JOIN o ON o.id = a.id WHERE b.id = a.id

--- LEFT JOIN of a bracketed cross product
SELECT a.id, b.id, g.id FROM a LEFT JOIN (b CROSS JOIN g) ON a.id = b.id AND g.id = b.id

--- a condition with assignments and user variables
SELECT id FROM a WHERE @missing IS NULL AND n = 1

--- the largest limit without an offset
SELECT id FROM o ORDER BY id LIMIT 18446744073709551615

--- an alias called like a function of sequences
SELECT id, total AS nextval FROM b WHERE total IS NOT NULL ORDER BY nextval, id

--- an operator in small letters, and a join
select a.id from a straight_join b on a.id = b.id where a.n is not null and not a.n = 3 and a.y is null or a.n <> 2
