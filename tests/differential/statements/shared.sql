-- Statements that mean the same on SQLite, PostgreSQL and MariaDB. The form of this file: see
-- statement_file.h; the tables: see adversarial_schema.cpp.

--- everything of one table
SELECT * FROM a

--- everything of two tables, one by one
SELECT o.*, b.* FROM b, o WHERE b.id = o.id

--- columns without a qualifier
SELECT id, n, y, total, name FROM a ORDER BY 1, 2, 3, 4, 5

--- columns qualified by the table
SELECT a.id, a.n FROM a ORDER BY a.id, a.n

--- columns qualified by alias
SELECT x.id, x.n FROM a AS x WHERE x.n > 1 ORDER BY x.id, x.n

--- an alias without AS
SELECT x.id k, x.n v FROM a x

--- an alias called like another table
SELECT o.id, o.n FROM a AS o

--- aliases that swap the names of two tables
SELECT a.id, a.n, b.id, b.n FROM a AS b JOIN b AS a ON a.id = b.id

--- an alias called like a column
SELECT y.y, n.n, y.n FROM a AS y JOIN b AS n ON y.id = n.id AND y.n < n.total

--- a table called like a column
SELECT n.n, n.id FROM n WHERE n.n > 1

--- the table of another schema
SELECT id, n FROM other.a

--- tables of two schemas with the same name
SELECT x.n, z.n FROM a AS x JOIN other.a AS z ON x.id = z.id

--- a table of the other schema qualified by its name
SELECT a.id, b.n FROM other.a JOIN b ON b.id = a.id

--- a column of the other schema's table, and none of the main schema's
SELECT o.id, o.n FROM other.o, a WHERE o.id = a.id

--- a column qualified by schema and table
SELECT other.a.id, other.a.n FROM other.a WHERE other.a.n > 8

--- two tables of the same name, told apart by schema
SELECT other.a.n, g.n FROM other.a, g WHERE other.a.id = g.id

--- stars of tables in two schemas
SELECT a.* FROM other.a, b WHERE a.id = b.id

--- a star of an alias in two schemas
SELECT x.* FROM other.a AS x, b WHERE x.id = b.id

--- a condition on a table of the other schema, by bare table name
SELECT b.id FROM b, other.a WHERE a.id = b.id AND a.n = 8

--- no current schema is known
--: schema
SELECT b.id, a.n FROM b, other.a WHERE a.id = b.id

--- no current schema is known, one table
--: schema
SELECT g.n FROM g WHERE g.n = 1

--- the temporary table hides the real one
SELECT n, name FROM hidden

--- the temporary table beside another schema, with no current schema known
--: schema
SELECT h.n, a.n FROM hidden AS h, other.a

--- a name that begins like a keyword
SELECT id AS selected, n AS from_here, y AS order_no FROM a ORDER BY order_no, selected, from_here

--- an empty table
--: no rows
SELECT id, name FROM empty

--- an empty table at the right of a left join
SELECT a.id, empty.id FROM a LEFT JOIN empty ON a.id = empty.id ORDER BY 1, 2

--- aggregates over an empty table
SELECT COUNT(*), SUM(n), MAX(name) FROM empty

--- DISTINCT
SELECT DISTINCT id, n FROM a

--- ALL is the default
SELECT ALL id, n FROM a

--- DISTINCT in front of a bracket
SELECT DISTINCT (id), n FROM a

--- BETWEEN with numbers
SELECT id, y FROM a WHERE y BETWEEN 5 AND 15

--- BETWEEN between other conditions
SELECT id, y FROM a WHERE id > 1 AND y BETWEEN 5 AND 15 AND total > 1

--- BETWEEN and OR
SELECT id, y FROM a WHERE y BETWEEN 5 AND 8 OR y BETWEEN 15 AND 20 OR id = 4

--- NOT BETWEEN
SELECT id, y FROM a WHERE y NOT BETWEEN 6 AND 15

--- BETWEEN with expressions as bounds
SELECT id, y FROM a WHERE y + 1 BETWEEN n + 1 AND (total * 3)

--- BETWEEN with a bracketed bound
SELECT id, y FROM a WHERE y BETWEEN 1 AND (n * 10)

--- BETWEEN of a bracketed value
SELECT id, y FROM a WHERE (y) BETWEEN (1) AND (15)

--- IN with numbers
SELECT id FROM a WHERE id IN (1, 3, 5)

--- IN with one number
SELECT id FROM a WHERE id IN (1)

--- NOT IN with numbers
SELECT id FROM a WHERE id NOT IN (1, 3, 5)

--- IN with texts that hold commas, brackets and quotes
SELECT id FROM a WHERE name IN ('one', 'a,b', '(', 'it''s', 'A!%')

--- IN with NULL
SELECT id FROM a WHERE n IN (1, NULL) OR (n NOT IN (1, NULL)) IS NULL

--- IN with columns and expressions
SELECT id FROM a WHERE n IN (y, total - 2, id + 1)

--- IN with a subquery
SELECT id, n FROM a WHERE id IN (SELECT id FROM b)

--- NOT IN with a subquery
SELECT id, n FROM a WHERE id NOT IN (SELECT id FROM b)

--- NOT IN with a subquery that gives several rows, of which the first is not the one that counts
SELECT id, n FROM a WHERE id NOT IN (SELECT id FROM b WHERE n > 1)

--- IN with a subquery that gives nothing
--: no rows
SELECT id FROM a WHERE id IN (SELECT id FROM empty)

--- NOT IN with a subquery that gives nothing
SELECT id FROM a WHERE id NOT IN (SELECT id FROM empty)

--- IN with a correlated subquery
SELECT id, n FROM a WHERE n IN (SELECT b.n FROM b WHERE b.id = a.id)

--- IN between other conditions
SELECT id FROM a WHERE n = 1 OR id IN (SELECT id FROM b WHERE b.n = 2) AND total > 1

--- rows in a list of rows
SELECT id, n FROM a WHERE (id, n) IN ((1, 3), (2, 1))

--- a row in a subquery
SELECT id, n FROM a WHERE (id, n) IN (SELECT id, n FROM b)

--- a row equal to a row
SELECT id, n FROM a WHERE (id, n) = (2, 1)

--- EXISTS
SELECT id FROM a WHERE EXISTS (SELECT 1 FROM b WHERE b.id = a.id)

--- NOT EXISTS
SELECT id FROM a WHERE NOT EXISTS (SELECT 1 FROM b WHERE b.id = a.id) AND n > 1

--- LIKE
SELECT id FROM a WHERE name LIKE 't%'

--- NOT LIKE
SELECT id FROM a WHERE name NOT LIKE 't%'

--- LIKE with ESCAPE
SELECT id, name FROM a WHERE name LIKE 'A!!!%' ESCAPE '!'

--- NOT LIKE with ESCAPE
SELECT id, name FROM a WHERE name NOT LIKE 'A!!!%' ESCAPE '!' AND id > 0

--- LIKE over several lines
SELECT id FROM a WHERE name LIKE 'first line
	second%'

--- IS NULL
SELECT id FROM a WHERE n IS NULL

--- IS NOT NULL
SELECT id FROM a WHERE n IS NOT NULL AND name IS NULL OR y IS NULL

--- every comparison
SELECT id, n FROM a WHERE n = 3 OR n <> 3 AND n < 5 AND n > 0 AND n <= 3 AND n >= 1 AND n != 2

--- brackets around OR
SELECT id FROM a WHERE (n = 3 OR y = 5) AND total = 5

--- brackets around AND
SELECT id FROM a WHERE n = 3 OR (y = 5 AND total = 5)

--- brackets in brackets
SELECT id FROM a WHERE ((n = 3 OR (y = 20)) AND (total = 5 OR ((total = 7))))

--- brackets that are not needed
SELECT id FROM a WHERE ((((n = 3))))

--- brackets around one side
SELECT id FROM a WHERE (n) = (3) AND (n + 1) * 2 = 8

--- a bracket at the end of an expression
SELECT id FROM a WHERE 2 * (n + 1) = (y - 2)

--- a bracket that looks like a group and is an operand
SELECT id FROM a WHERE (n + y) > 10 AND (n) IN (1, 3)

--- NOT in front of a comparison
SELECT id FROM a WHERE NOT n = 1

--- NOT in front of a bracket
SELECT id FROM a WHERE NOT (n = 1 OR y = 10)

--- NOT twice
SELECT id FROM a WHERE NOT NOT n = 1 AND NOT (NOT (y = 20))

--- NOT binds closer than AND
SELECT id FROM a WHERE NOT n = 1 AND y = 10

--- NOT in front of IN, LIKE, BETWEEN and IS NULL
SELECT id FROM a WHERE NOT id IN (1, 2) AND NOT name LIKE 'x%' AND NOT y BETWEEN 1 AND 4 OR NOT n IS NULL AND NOT id = 2

--- a CASE in a condition
SELECT id FROM a WHERE CASE WHEN n = 1 AND y = 20 THEN 1 WHEN n IS NULL OR n = 3 THEN 2 ELSE 3 END = 2

--- a CASE with AND behind it
SELECT id FROM a WHERE CASE n WHEN 1 THEN y ELSE total END > 5 AND id < 4

--- a scalar subquery in a comparison
SELECT id FROM a WHERE n <= (SELECT MAX(n) FROM b WHERE b.id < a.id)

--- a scalar subquery at the left
SELECT id FROM a WHERE (SELECT COUNT(*) FROM b WHERE b.id = a.id) = 2

--- a scalar subquery in the SELECT list
SELECT id, (SELECT COUNT(*) FROM b WHERE b.id = a.id) AS y FROM a ORDER BY y, id

--- arithmetic keeps its order
SELECT id, n + y * total - 1, (n + y) * total, n - (y - total), -n, - -n FROM a

--- arithmetic in a condition
SELECT id FROM a WHERE n + y * 2 > total - 1 AND -n < -1

--- literals of all kinds
SELECT id, 1, 1.5, 'text', '', 'it''s', NULL FROM g

--- comments anywhere
SELECT /* one */ id -- two
, /* three */ n FROM /* four */ a /* five */ WHERE /* six */ n = 1 -- seven
AND /* eight */ id = 2 -- nine

--- a comment inside an expression
SELECT id + /* plus */ n AS k FROM a WHERE n + /* one
two */ 1 = 2

--- a comment at the end of an expression, which would swallow what follows
SELECT id, n -- last
FROM a -- table
WHERE n = 1 -- one
AND y = 20 -- two
ORDER BY id -- three

--- a text that looks like a comment
SELECT id, '-- no comment' AS k, '/* nor this */' AS l FROM g

--- keywords in mixed case
SeLeCt Id, N fRoM a wHeRe N bEtWeEn 1 aNd 2 oRdEr By Id, N

--- no blanks at all
SELECT id,n,y FROM a WHERE(n=1)OR(y=10)AND(id)IN(1,2)

--- a semicolon at the end
SELECT id FROM a WHERE n = 1;

--- a text of several lines stays as it is
SELECT id, 'one
	two
    three' AS k FROM b WHERE name = 'first line
    second line'

--- a text of several lines in a derived table
SELECT k, id FROM (
    SELECT id, name AS k
    FROM b
    WHERE name = 'first line
    second line'
) AS s

--- an indented derived table
SELECT s.k FROM (

        SELECT id AS k,
               n
        FROM a
        WHERE n > 1

    ) AS s WHERE s.k > 1

--- INNER JOIN
SELECT a.id, b.n FROM a INNER JOIN b ON a.id = b.id

--- JOIN
SELECT a.id, b.n FROM a JOIN b ON a.id = b.id

--- LEFT JOIN
SELECT a.id, b.id FROM a LEFT JOIN b ON a.id = b.id AND b.n > 2

--- LEFT OUTER JOIN
SELECT a.id, b.id FROM a LEFT OUTER JOIN b ON a.id = b.id WHERE b.id IS NULL

--- RIGHT JOIN
SELECT a.id, b.id FROM a RIGHT JOIN b ON a.id = b.id

--- RIGHT OUTER JOIN
SELECT a.id, b.id, b.n FROM a RIGHT OUTER JOIN b ON a.id = b.id AND a.n = b.n

--- CROSS JOIN
SELECT a.id, g.id FROM a CROSS JOIN g

--- NATURAL JOIN
SELECT a.id, b.n FROM a NATURAL JOIN b

--- NATURAL INNER JOIN
SELECT id, n FROM a NATURAL INNER JOIN b

--- NATURAL LEFT JOIN
SELECT a.id, b.id FROM a NATURAL LEFT JOIN b

--- NATURAL LEFT OUTER JOIN
SELECT a.id, b.id FROM a NATURAL LEFT OUTER JOIN b

--- NATURAL RIGHT JOIN
SELECT a.id, b.id FROM a NATURAL RIGHT JOIN b

--- NATURAL join of three tables
SELECT id, y FROM a NATURAL JOIN b NATURAL JOIN o

--- USING with one column
SELECT id, a.n, b.n FROM a JOIN b USING (id)

--- USING with two columns
SELECT id, n, a.y, b.y FROM a JOIN b USING (id, n)

--- USING in a left join
SELECT id, a.n, b.n FROM a LEFT JOIN b USING (id)

--- star over USING
SELECT * FROM a JOIN b USING (id)

--- star over a natural join
SELECT * FROM a NATURAL JOIN b

--- three joins in a row
SELECT a.id, b.n, o.n FROM a JOIN b ON a.id = b.id LEFT JOIN o ON b.id = o.id AND o.n = 1

--- join brackets at the right
SELECT a.id, b.n, o.n FROM a LEFT JOIN (b JOIN o ON b.id = o.id) ON a.id = b.id

--- join brackets at the left
SELECT a.id, b.n, o.n FROM (a LEFT JOIN b ON a.id = b.id) JOIN o ON a.id = o.id

--- join brackets in brackets
SELECT a.id, b.n FROM ((a LEFT JOIN (b JOIN o ON b.id = o.id) ON a.id = b.id) LEFT JOIN g ON g.id = a.id)

--- comma
SELECT a.id, b.id FROM a, b WHERE a.id = b.id

--- comma and join
SELECT a.id, b.n, o.n FROM a, b JOIN o ON b.id = o.id WHERE a.id = o.id

--- join and comma
SELECT a.id, b.n, o.n FROM a JOIN b ON a.id = b.id, o WHERE o.id = a.id

--- comma and left join, and the left join holds nothing of the first table
SELECT a.id, b.n, o.n FROM a, b LEFT JOIN o ON b.id = o.id WHERE a.n = 1

--- a condition with brackets in ON
SELECT a.id, b.n FROM a JOIN b ON (a.id = b.id AND (a.n = 1 OR b.n = 2))

--- ON with BETWEEN
SELECT a.id, b.n FROM a JOIN b ON a.id BETWEEN b.id AND b.id + 1

--- ON with IN and a subquery
SELECT a.id, b.n FROM a JOIN b ON a.id IN (SELECT id FROM o) AND b.id = a.id

--- a self join
SELECT x.id, z.id FROM a x JOIN a z ON x.id < z.id AND x.total = z.total

--- a derived table
SELECT s.k, s.v FROM (SELECT id AS k, n AS v FROM a WHERE n > 1) AS s WHERE s.v < 3

--- a derived table without AS
SELECT s.k FROM (SELECT id AS k FROM a) s

--- derived tables in derived tables
SELECT y.n FROM (SELECT n.n FROM (SELECT id AS n FROM a WHERE y > 8) AS n) AS y ORDER BY 1

--- two derived tables joined
SELECT x.id, z.n FROM (SELECT id FROM a) AS x JOIN (SELECT id, n FROM b) AS z ON x.id = z.id

--- a derived table at the left of a natural join
SELECT id, total FROM (SELECT id, n FROM a) AS x NATURAL JOIN b

--- a derived table with a star
SELECT s.id, s.name FROM (SELECT * FROM b) AS s WHERE s.n = 3

--- a derived table with an aggregate
SELECT s.c, s.id FROM (SELECT id, COUNT(*) AS c FROM a GROUP BY id) AS s WHERE s.c > 1

--- a derived table with order and limit
SELECT s.id, s.y FROM (SELECT id, y FROM b ORDER BY y DESC, id LIMIT 3) AS s ORDER BY s.id, s.y

--- a derived table that is a set operation
SELECT s.id FROM (SELECT id FROM a UNION SELECT id FROM b) AS s WHERE s.id > 2

--- a set operation in a derived table beside a plain table
SELECT s.id, g.n FROM (SELECT id FROM a UNION ALL SELECT id FROM b) AS s JOIN g ON g.id = s.id

--- an alias of a SELECT column that is a column of the table, in ORDER BY
SELECT id, total AS y FROM b WHERE total IS NOT NULL ORDER BY y, id

--- an alias that swaps two columns
SELECT n AS y, y AS n FROM b WHERE n IS NOT NULL AND y IS NOT NULL ORDER BY n, y

--- the same alias twice
SELECT n AS k, n AS k FROM a

--- an alias in ORDER BY beside the qualified column
SELECT id, n AS y FROM b WHERE n IS NOT NULL AND b.y IS NOT NULL ORDER BY b.y, id, n

--- ordinals in ORDER BY
SELECT id, y FROM b WHERE y IS NOT NULL ORDER BY 2, 1

--- an ordinal descending
SELECT id, y FROM b WHERE y IS NOT NULL ORDER BY 2 DESC, 1 ASC

--- an expression in ORDER BY
SELECT id, y FROM b WHERE y IS NOT NULL ORDER BY id * -1, y + 0

--- an aggregate with an alias called like a column
SELECT id, COUNT(*) AS y FROM a GROUP BY id ORDER BY y DESC, id

--- an aggregate with an alias, in a derived table
SELECT s.y, s.id FROM (SELECT id, COUNT(*) AS y FROM a GROUP BY id) AS s ORDER BY s.y, s.id

--- an aggregate in ORDER BY
SELECT id FROM a GROUP BY id ORDER BY COUNT(*) DESC, id

--- aggregates of all kinds
SELECT COUNT(*), COUNT(n), COUNT(DISTINCT id), SUM(n), MIN(y), MAX(total), SUM(n + y), SUM(DISTINCT total) FROM a

--- an aggregate in small letters
SELECT count(*), sum(n), max(name) FROM a

--- an aggregate with a qualified column
SELECT COUNT(a.n), MAX(b.n) FROM a LEFT JOIN b ON a.id = b.id

--- an aggregate in an expression
SELECT id, SUM(n) + 1, 2 * COUNT(*) FROM a GROUP BY id

--- an aggregate over a CASE
SELECT SUM(CASE WHEN n = 1 THEN 1 ELSE 0 END) AS total FROM a

--- GROUP BY with two columns
SELECT id, n, COUNT(*) FROM a GROUP BY id, n

--- GROUP BY with a qualified column
SELECT a.id, COUNT(*) FROM a JOIN b ON a.id = b.id GROUP BY a.id

--- GROUP BY with an ordinal
SELECT id, COUNT(*) FROM a GROUP BY 1

--- GROUP BY with an expression
SELECT id + 1, COUNT(*) FROM a GROUP BY id + 1

--- HAVING with a count
SELECT id FROM a GROUP BY id HAVING COUNT(*) > 1

--- HAVING with several conditions
SELECT id, COUNT(*) FROM a GROUP BY id HAVING COUNT(*) > 1 AND (SUM(n) > 2 OR MAX(y) = 20)

--- HAVING with BETWEEN and IN
SELECT id FROM a GROUP BY id HAVING COUNT(*) BETWEEN 1 AND 1 AND MAX(total) IN (1, 6, 7)

--- HAVING without GROUP BY
SELECT MAX(id) FROM a HAVING COUNT(*) > 1

--- all clauses
SELECT DISTINCT a.id, MAX(b.n) AS n FROM a LEFT JOIN b ON a.id = b.id WHERE a.id > 0 GROUP BY a.id, a.n HAVING COUNT(*) < 5 ORDER BY a.id LIMIT 3 OFFSET 1

--- LIMIT
SELECT id, n FROM o WHERE id IS NOT NULL ORDER BY id LIMIT 2

--- LIMIT and OFFSET
SELECT id, n FROM o WHERE id IS NOT NULL ORDER BY id LIMIT 2 OFFSET 1

--- LIMIT 0
--: no rows
SELECT id FROM o ORDER BY id LIMIT 0

--- OFFSET 0
SELECT id FROM o ORDER BY id LIMIT 2 OFFSET 0

--- a LIMIT that is larger than the model can hold is refused
--: refused
SELECT id FROM o ORDER BY id LIMIT 3000000000

--- a LIMIT with leading zeros
SELECT id FROM o ORDER BY id LIMIT 002

--- UNION is refused
--: refused UNION
SELECT id FROM a UNION SELECT id FROM b

--- UNION ALL is refused
--: refused UNION
SELECT id FROM a UNION ALL SELECT id FROM b ORDER BY 1

--- EXCEPT is refused
--: refused EXCEPT
SELECT id FROM a EXCEPT SELECT id FROM b

--- INTERSECT is refused
--: refused INTERSECT
SELECT id FROM a INTERSECT SELECT id FROM b

--- WITH is refused
--: refused WITH
WITH x AS (SELECT id FROM a) SELECT id FROM x

--- a named window is refused
--: refused WINDOW
SELECT id, SUM(n) OVER w FROM a WINDOW w AS (PARTITION BY id)

--- WITH in a derived table stays text
SELECT s.id FROM (WITH x AS (SELECT id FROM a) SELECT id FROM x) AS s

--- a window function
SELECT id, SUM(n) OVER (PARTITION BY id) AS n FROM a

--- a window function over a bare count
SELECT id, COUNT(*) OVER () FROM a

--- a window function with an order
SELECT id, ROW_NUMBER() OVER (ORDER BY id, n, y, total) AS k FROM b ORDER BY k

--- casts
SELECT CAST(name AS CHAR(3)), CAST(total AS DECIMAL) FROM b WHERE CAST(id AS CHAR(1)) = '3'

--- COALESCE and NULLIF
SELECT COALESCE(n, 0), NULLIF(y, 20) FROM a WHERE COALESCE(n, -1) = -1 OR NULLIF(y, 20) IS NULL

--- functions with commas and brackets
SELECT REPLACE(name, ')', '('), UPPER(LOWER(name)), ABS(-n) FROM a WHERE UPPER(name) = 'TWO'

--- CURRENT_DATE is no column
SELECT id FROM a WHERE CURRENT_DATE IS NULL OR n = 1

--- TRUE and FALSE are no columns
SELECT id FROM a WHERE n = 1 AND TRUE OR FALSE

--- SELECT without FROM
SELECT 1 + 1, 'text' AS k

--- SELECT without FROM and with WHERE
SELECT 1 AS k WHERE 1 = 1

--- NULL in the SELECT list and in a comparison
SELECT NULL AS k, n = NULL AS l FROM g

--- comparisons as columns
SELECT id, n = 1 AS k, n > 1 AND y > 5 AS l, n IS NULL AS m FROM a

--- a comparison of a comparison's bracket
SELECT id FROM a WHERE (n = 1) = (y = 20)


--- an order by a column of a derived table
SELECT s.c FROM (SELECT a.id AS c FROM a) AS s ORDER BY s.c

--- two columns that swap names, in an expression of ORDER BY
SELECT id AS n, n AS id FROM b WHERE n IS NOT NULL ORDER BY b.n, b.id

--- the qualified column beside an alias of its name
SELECT n AS id FROM b WHERE n IS NOT NULL ORDER BY b.id, b.n

--- an aggregate with a bracketed argument
SELECT COUNT((n)), MAX((a.y)), SUM(+ n), COUNT(/* c */ n) FROM a

--- an aggregate over ALL
SELECT COUNT(ALL n), SUM(ALL total) FROM a

--- DISTINCT over an aggregate
SELECT DISTINCT COUNT(*) FROM a GROUP BY id

--- a subquery alone as condition
SELECT id FROM a WHERE (SELECT COUNT(*) FROM b WHERE b.id = a.id) > 0 AND (SELECT MAX(y) FROM g) > 1

--- a LIMIT of no rows behind an offset
--: no rows
SELECT id FROM o ORDER BY id LIMIT 0 OFFSET 3

--- brackets around ON
SELECT a.id, b.n FROM a JOIN b ON ((a.id = b.id) AND ((a.n = b.n)))

--- brackets around the sides of ON
SELECT a.id, b.n FROM a JOIN b ON (a.id) = (b.id)

--- ON with OR beside another join
SELECT a.id, b.n, o.n FROM a JOIN b ON a.id = b.id OR a.n = b.n JOIN o ON o.id = a.id AND o.n = b.n OR o.id = 8

--- a join inside brackets inside a comma list
SELECT a.id, b.n, g.n FROM g, (a LEFT JOIN b ON a.id = b.id AND b.n = 1) WHERE g.id = a.id

--- four tables, left and right
SELECT a.id, b.id, o.id, g.id FROM a LEFT JOIN b ON a.id = b.id RIGHT JOIN o ON o.id = b.id LEFT JOIN g ON g.id = o.id

--- a comment as the last thing of a derived table
SELECT s.id FROM (
    SELECT id FROM a -- the end
) AS s

--- a comment of several lines in a derived table
SELECT s.id FROM (
    SELECT id /* one
    two */ FROM a
    WHERE n = 1 -- three
) AS s

--- texts of several lines at every depth
SELECT s.k, s.l FROM (
    SELECT t.k, 'x
    y' AS l FROM (
        SELECT 'p
        q' AS k FROM g WHERE name <> 'r
            s'
    ) AS t
) AS s

--- CASE with conditions of all kinds
SELECT id, CASE WHEN n BETWEEN 1 AND 2 AND name LIKE 't%' THEN 'p' WHEN id IN (1, 4) OR NOT y = 5 THEN 'q' END AS k FROM a

--- BETWEEN whose bounds are CASE and subquery
SELECT id FROM a WHERE y BETWEEN CASE WHEN n = 1 AND id = 2 THEN 20 ELSE 10 END AND (SELECT MAX(y) FROM b)

--- BETWEEN twice with AND between
SELECT id FROM a WHERE y BETWEEN 5 AND 15 AND total BETWEEN 1 AND 7 AND id NOT BETWEEN 4 AND 4

--- NOT in front of EXISTS and of brackets in a chain
SELECT id FROM a WHERE n > 0 AND NOT EXISTS (SELECT 1 FROM empty) AND NOT (n = 1 AND y = 20) OR NOT (id = 2)

--- a chain of both gates without brackets
SELECT id FROM a WHERE n = 1 AND y = 20 OR n = 3 AND total = 5 OR id = 4 AND n = 2 AND total = 1

--- a chain of brackets of both gates
SELECT id FROM a WHERE (n = 1 OR n = 3) AND (y = 20 OR total = 5) AND NOT (id = 4 OR id = 5)

--- HAVING with a subquery
SELECT id FROM a GROUP BY id HAVING COUNT(*) >= (SELECT COUNT(*) FROM o WHERE o.id = a.id) AND id IN (SELECT id FROM b)

--- GROUP BY of a CASE
SELECT CASE WHEN n > 1 THEN 'more' ELSE 'less' END AS k, COUNT(*) FROM a GROUP BY CASE WHEN n > 1 THEN 'more' ELSE 'less' END

--- ORDER BY of a CASE with a direction
SELECT id, n FROM b WHERE n IS NOT NULL ORDER BY CASE WHEN n = 3 THEN 0 ELSE 1 END DESC, id DESC, n

--- ORDER BY of a subquery
SELECT id, n FROM b WHERE n IS NOT NULL ORDER BY (SELECT COUNT(*) FROM a WHERE a.id = b.id) DESC, id, n

--- the same table twice, in two schemas
SELECT x.n, y.n FROM other.a AS x, a AS y WHERE x.id = y.id AND x.n > y.n

--- an alias called like the schema
SELECT other.n FROM a AS other WHERE other.id = 2

--- an alias called like a table of the other schema
SELECT x.n, a.n FROM other.a AS x, b AS a WHERE x.id = a.id

--- the bare name where the alias of another hides it
SELECT a.n, b.n FROM b AS a, a AS b WHERE a.id = b.id AND a.n > 1
