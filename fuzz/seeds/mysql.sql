SELECT DISTINCT o.id, `o`.`total amount` AS total, c.*, COUNT(*), SUM(o.total) AS s, 'a' 'b' AS x, o.a->>'$.b' AS j
FROM shop.orders AS o INNER JOIN customers c ON c.id = o.customer_id AND (c.n > 1 OR NOT c.b) LEFT JOIN `order` USING (id, n)
WHERE o.total BETWEEN 1 AND 15 AND (o.state IN ('new', 'paid') OR o.note LIKE 'A!%' ESCAPE '!') AND NOT EXISTS (SELECT 1 FROM t WHERE t.id = o.id)
GROUP BY o.id, total HAVING COUNT(*) > 1 AND MAX(o.total) <> 7 ORDER BY total DESC, 2, o.id ASC LIMIT 5, 10

SELECT a && b, c || d, e XOR f, -5--3, `x``y`, "s\"t", @v := 1, _utf8'x' COLLATE utf8_bin FROM t # comment
WHERE a <=> NULL OR a IS NOT TRUE AND b REGEXP '^a' OR (a, b) IN ((1, 2), (3, 4)) AND t.a NOT IN (SELECT a FROM u)

SELECT t.a FROM (SELECT a, b AS c FROM s.t WHERE a > '1
  2') AS t NATURAL LEFT JOIN u CROSS JOIN (v JOIN w ON v.i = w.i) WHERE MATCH (a) AGAINST ('x' IN BOOLEAN MODE) GROUP BY a WITH ROLLUP LIMIT 3 OFFSET 4

SELECT CASE a WHEN 1 THEN 'x' ELSE NULL END AS k, INTERVAL 1 DAY + d, GROUP_CONCAT(DISTINCT a ORDER BY b SEPARATOR ','), 1a FROM t USE INDEX (i), DUAL, u STRAIGHT_JOIN v
