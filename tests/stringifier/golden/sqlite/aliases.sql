SELECT
	o."a" AS "o", 
	Y."a" AS "Y", 
	UP."a" AS "UP", 
	"2"."a" AS "2", 
	"My A"."a" AS "My A", 
	"a$b"."a" AS "a$b", 
	"ä"."a" AS "ä"
FROM
	"t" AS "o",
	"t" AS "Y",
	"t" AS "UP",
	"t" AS "2",
	"t" AS "My A",
	"t" AS "a$b",
	"t" AS "ä"
ORDER BY
	o, 
	Y, 
	UP, 
	"2", 
	"My A", 
	"a$b", 
	"ä"
