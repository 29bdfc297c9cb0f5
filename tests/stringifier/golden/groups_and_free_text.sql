-- mysql mariadb postgresql oracle sqlite sqlserver
SELECT DISTINCT
	g % 2 AS "odd", 
	now()
FROM
	generate_series(1, 3)
GROUP BY
	1, 
	2 DESC, 
	3
HAVING
	count(*) IN (1,2,3)
ORDER BY
	1 ASC, 
	2 DESC, 
	3
