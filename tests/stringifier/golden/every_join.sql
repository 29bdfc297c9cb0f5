-- mysql mariadb postgresql oracle sqlite sqlserver
SELECT
	*
FROM
	"t"
	STRAIGHT_JOIN
	"t0"
	ON 
		"t0"."id" = 1,
	"t1"
	INNER JOIN
	"t2"
	ON 
		"t2"."id" = 1
	LEFT JOIN
	"t3"
	ON 
		"t3"."id" = 1
	RIGHT JOIN
	"t4"
	ON 
		"t4"."id" = 1
	CROSS JOIN
	"t5"
	FULL OUTER JOIN
	"t6"
	ON 
		"t6"."id" = 1
