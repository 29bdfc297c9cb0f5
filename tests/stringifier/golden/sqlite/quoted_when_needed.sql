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
