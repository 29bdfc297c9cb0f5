SELECT o.id, "O"."Total" AS "T x", count(*) AS n, sum(o.total), c.*, o.a::int, e'\n', $$x'y$$, ARRAY[1, 2][1], o.j #>> '{a}' AS j
FROM public.orders AS o INNER JOIN s."C" AS "O" ON "O".id = o.cid LEFT OUTER JOIN d USING ("Id", n) CROSS JOIN LATERAL f(o.id) AS g, ONLY t AS x
WHERE o.total BETWEEN 1 AND (2) AND (o.state = ANY (ARRAY['a']) OR NOT o.b) AND o.n IS DISTINCT FROM 3 AND "O".k ILIKE 'x%'
GROUP BY o.id, "T x", ROLLUP (a, b) HAVING count(*) > 1 ORDER BY "T x" DESC NULLS LAST, 2, n ASC LIMIT 10 OFFSET 5

SELECT a ISNULL, b AT TIME ZONE 'UTC' AS z, INTERVAL '1' DAY, x.y.z.a, (t).a, U&"d\0061" FROM t TABLESAMPLE SYSTEM (1), (VALUES (1, 2)) AS v(a, b), generate_series(1, 3) g WHERE a = $1 AND b ~ '^x' /* nested /* comment */ */

SELECT d.a FROM (SELECT a FROM (SELECT b AS a FROM t) AS e WHERE e.a IN (1, 2)) d JOIN ((a JOIN b ON a.i = b.i) JOIN c ON c.i = b.i) ON d.a = c.i WHERE (a, b) = (1, 2) OR a NOT IN (SELECT 1) FETCH FIRST 3 ROWS ONLY

SELECT a FROM t1 JOIN t2 JOIN t3 ON t2.i = t3.i ON t1.i = t2.i NATURAL INNER JOIN t4 ORDER BY a USING > OFFSET 3 ROWS FETCH NEXT ROW ONLY
