-- mysql mariadb postgresql oracle sqlite sqlserver
SELECT
	*
FROM
	"t"
WHERE
	"t"."a" BETWEEN 1 AND 2 OR
	"t"."a" BETWEEN 3 AND 4 OR
	"t"."a" BETWEEN 5 AND (
		6
	) OR
	NOT "t"."a" BETWEEN 7 AND 8
