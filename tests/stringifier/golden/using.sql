-- mysql mariadb postgresql oracle sqlite sqlserver
SELECT
	*
FROM
	"a"
	INNER JOIN
	"b"
	USING (id, "day")
	INNER JOIN
	"c"
	USING ()
