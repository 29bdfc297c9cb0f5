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
