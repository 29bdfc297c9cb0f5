SELECT
	"t"."a"
FROM
	"t"
OFFSET 0
