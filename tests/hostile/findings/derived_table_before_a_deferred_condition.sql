postgresql s
SELECT a FROM x LEFT JOIN (SELECT a FROM u) y CROSS JOIN b ON a.id = b.id