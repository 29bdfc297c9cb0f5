SELECT
	"select"."a" AS "select", 
	"true"."a" AS "true", 
	"level"."a" AS "level", 
	"user"."a" AS "user", 
	"name"."a" AS "name"
FROM
	"t" "select",
	"t" "true",
	"t" "level",
	"t" "user",
	"t" "name"
ORDER BY
	"select", 
	"true", 
	"level", 
	"user", 
	"name"
