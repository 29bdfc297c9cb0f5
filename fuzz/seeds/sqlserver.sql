SELECT TOP 10 o.[id], [o].[a b] AS [x y], n = o.n + 1, COUNT(*) AS c, N'é' AS u FROM dbo.orders AS o WITH (NOLOCK) INNER JOIN db..customers c ON c.id = o.id LEFT OUTER JOIN #temp t ON t.id = c.id
WHERE o.a IN (1, 2) AND (o.b <> 3 OR o.c !> 4) AND NOT o.d = 1 AND CONVERT(date, o.e) = @d GROUP BY o.id HAVING COUNT(*) > 1 ORDER BY [x y] DESC, 1

SELECT a.* FROM s.t a CROSS APPLY s.f(a.id) b OUTER APPLY (SELECT TOP 1 x FROM u WHERE u.i = a.i ORDER BY x) d WHERE a.x = ALL (SELECT 1) ORDER BY a.y OFFSET 5 ROWS FETCH NEXT 10 ROWS ONLY

SELECT DISTINCT IIF(a > 1, 'x', "y") AS k, ROW_NUMBER() OVER (ORDER BY a) AS r FROM t FULL HASH JOIN u ON t.i = u.i PIVOT (SUM(a) FOR b IN ([1], [2])) AS p OPTION (RECOMPILE)
