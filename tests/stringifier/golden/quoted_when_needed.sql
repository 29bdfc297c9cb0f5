-- mysql mariadb postgresql sqlite
SELECT
	o.id AS "current_date", 
	COUNT(*) AS n, 
	"true"
FROM
	shop.orders AS o
	INNER JOIN
	"select"."Order Lines" AS "My A"
	ON 
		o.id = "My A"."ORDER"
-- oracle
SELECT
	"o"."id" AS "current_date", 
	COUNT(*) AS "n", 
	"true"
FROM
	"shop"."orders" "o"
	INNER JOIN
	"select"."Order Lines" "My A"
	ON 
		"o"."id" = "My A"."ORDER"
-- sqlserver
SELECT
	o.id AS "current_date", 
	COUNT(*) AS n, 
	true
FROM
	shop.orders AS o
	INNER JOIN
	"select"."Order Lines" AS "My A"
	ON 
		o.id = "My A"."ORDER"
