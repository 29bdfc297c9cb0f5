SELECT
	"o"."a" AS "o", 
	Y."a" AS "Y", 
	UP."a" AS "UP", 
	"2"."a" AS "2", 
	"My A"."a" AS "My A", 
	"a$b"."a" AS "a$b", 
	"ä"."a" AS "ä"
FROM
	"t" "o",
	"t" "Y",
	"t" "UP",
	"t" "2",
	"t" "My A",
	"t" "a$b",
	"t" "ä"
ORDER BY
	"o", 
	Y, 
	UP, 
	"2", 
	"My A", 
	"a$b", 
	"ä"
