-- mysql mariadb postgresql sqlite sqlserver
SELECT
	*
FROM
	"a"
	CROSS JOIN
	(
		"b",
		(
			"c"
		) AS "k"
		INNER JOIN
		"d"
	)
WHERE
	NOT "a"."x" = 1 AND
	(
		"a"."x" = 1 OR
		NOT (
			"b"."x" = 1
		)
	) AND
	y
-- oracle
SELECT
	*
FROM
	"a"
	CROSS JOIN
	(
		"b",
		(
			"c"
		) "k"
		INNER JOIN
		"d"
	)
WHERE
	NOT "a"."x" = 1 AND
	(
		"a"."x" = 1 OR
		NOT (
			"b"."x" = 1
		)
	) AND
	y
