-- mysql mariadb
SELECT
	*
FROM
	"d",
	"a"
	INNER JOIN
	"b"
	LEFT JOIN
	"c"
	ON 
		"b"."id" = "c"."id"
	ON 
		"a"."id" = "b"."id",
	"e"
	LEFT JOIN
	(
		"f"
		CROSS JOIN
		"g"
	)
	ON 
		"e"."id" = "g"."id"
-- postgresql oracle sqlserver
SELECT
	*
FROM
	"d",
	"a"
	INNER JOIN
	"b"
	LEFT JOIN
	"c"
	ON 
		"b"."id" = "c"."id"
	ON 
		"a"."id" = "b"."id",
	"e"
	LEFT JOIN
	"f"
	CROSS JOIN
	"g"
	ON 
		"e"."id" = "g"."id"
-- sqlite
SELECT
	*
FROM
	"d",
	"a"
	INNER JOIN
	(
		"b"
		LEFT JOIN
		"c"
		ON 
			"b"."id" = "c"."id"
	)
	ON 
		"a"."id" = "b"."id",
	"e"
	LEFT JOIN
	(
		"f"
		CROSS JOIN
		"g"
	)
	ON 
		"e"."id" = "g"."id"
