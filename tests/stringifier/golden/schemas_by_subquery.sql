-- mysql mariadb postgresql sqlite
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
	) AS "s",
	"server"."shop"."deep"
WHERE
	"a"."x" IS NOT NULL
-- oracle
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
	) "s",
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
	) AS "s",
	"server"."shop"."deep"
WHERE
	"a"."x" IS NOT NULL
