SELECT
	u.*, 
	*, 
	"COUNT"(*) AS "n", 
	"SUM"(u."a") AS "total"
FROM
	"t" AS "u"
