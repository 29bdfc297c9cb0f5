SELECT
	"shop"."a"."x", 
	"depot"."b"."y", 
	"shop"."a".*
FROM
	"shop"."a",
	"depot"."b"
