-- mysql mariadb postgresql oracle sqlite sqlserver
SELECT
	"t".*, 
	*, 
	"COUNT"(*) AS "n", 
	"SUM"("t"."a") AS "total"
FROM
	"t"
