-- mysql mariadb postgresql sqlite sqlserver
SELECT
	u.*, 
	*, 
	"COUNT"(*) AS "n", 
	"SUM"(u."a") AS "total"
FROM
	"t" AS "u"
-- oracle
SELECT
	"u".*, 
	*, 
	"COUNT"(*) AS "n", 
	"SUM"("u"."a") AS "total"
FROM
	"t" "u"
