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
