-- mysql mariadb postgresql oracle sqlite
SELECT
	"a"."x", 
	"server"."shop"."deep"."z"
FROM
	"a",
	(
		SELECT
			"shop"."a"."x", 
			"depot"."b"."y", 
			"shop"."a".*
		FROM
			"shop"."a",
			"depot"."b"
	),
	"server"."shop"."deep"
WHERE
	"a"."x" IS NOT NULL
-- sqlserver
SELECT
	"a"."x", 
	"server"."shop"."deep"."z"
FROM
	"shop"."a",
	(
		SELECT
			"shop"."a"."x", 
			"depot"."b"."y", 
			"shop"."a".*
		FROM
			"shop"."a",
			"depot"."b"
	),
	"server"."shop"."deep"
WHERE
	"a"."x" IS NOT NULL
