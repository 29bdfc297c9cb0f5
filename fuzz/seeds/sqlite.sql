SELECT t.a, "t"."b c" AS x, [d e], `f`, COUNT(*), total(a) AS s, 'x' y, t.rowid, main.t.* FROM main.t LEFT JOIN u, v AS w INDEXED BY i CROSS JOIN z ON z.i = w.i
WHERE t.a == 1 AND "b" = "c" AND (t.a IN (1, 'x', NULL) OR t.b NOT IN (SELECT ("b") FROM u)) AND t.c IS NOT u.d AND t.a GLOB 'x*' AND e ISNULL OR f NOT NULL
GROUP BY 1, t.a HAVING count(*) >= 2 ORDER BY x COLLATE NOCASE DESC, t.a NULLS LAST LIMIT 0x10 OFFSET '2'

SELECT a, (SELECT max(b) FROM u WHERE u.i = t.i) AS m FROM ((t AS k)) NATURAL JOIN (SELECT 1 AS one, 'l
	i' AS two) d JOIN (p JOIN q USING (id)) ON p.id = d.one WHERE a IN ((SELECT 1)) OR a IN t OR a BETWEEN 1 AND 2 AND NOT b LIMIT -1

SELECT "x" FROM sqlite_master AS m WHERE m.type = 'table' AND name NOT LIKE 'sqlite_%' ESCAPE '\' ORDER BY "x" LIMIT 5, 6
