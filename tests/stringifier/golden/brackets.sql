-- mysql mariadb postgresql oracle sqlite sqlserver
SELECT
	*
FROM
	"a"
	CROSS JOIN
	(
		"b",
		(
			"c"
		)
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
