-- mysql mariadb sqlite sqlserver
SELECT
	o."a" AS "o", 
	Y."a" AS "Y", 
	"2"."a" AS "2", 
	"My A"."a" AS "My A", 
	"a$b"."a" AS "a$b", 
	"ä"."a" AS "ä", 
	"select"."a" AS "select", 
	level."a" AS "level"
FROM
	"t" AS "o",
	"t" AS "Y",
	"t" AS "2",
	"t" AS "My A",
	"t" AS "a$b",
	"t" AS "ä",
	"t" AS "select",
	"t" AS "level"
ORDER BY
	o, 
	Y, 
	"2", 
	"My A", 
	"a$b", 
	"ä", 
	"select", 
	level
-- postgresql
SELECT
	o."a" AS "o", 
	"Y"."a" AS "Y", 
	"2"."a" AS "2", 
	"My A"."a" AS "My A", 
	"a$b"."a" AS "a$b", 
	"ä"."a" AS "ä", 
	"select"."a" AS "select", 
	level."a" AS "level"
FROM
	"t" AS "o",
	"t" AS "Y",
	"t" AS "2",
	"t" AS "My A",
	"t" AS "a$b",
	"t" AS "ä",
	"t" AS "select",
	"t" AS "level"
ORDER BY
	o, 
	"Y", 
	"2", 
	"My A", 
	"a$b", 
	"ä", 
	"select", 
	level
-- oracle
SELECT
	"o"."a" AS "o", 
	Y."a" AS "Y", 
	"2"."a" AS "2", 
	"My A"."a" AS "My A", 
	"a$b"."a" AS "a$b", 
	"ä"."a" AS "ä", 
	"select"."a" AS "select", 
	"level"."a" AS "level"
FROM
	"t" "o",
	"t" "Y",
	"t" "2",
	"t" "My A",
	"t" "a$b",
	"t" "ä",
	"t" "select",
	"t" "level"
ORDER BY
	"o", 
	Y, 
	"2", 
	"My A", 
	"a$b", 
	"ä", 
	"select", 
	"level"
