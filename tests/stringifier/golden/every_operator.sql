-- mysql mariadb postgresql oracle sqlite sqlserver
SELECT
	*
FROM
	"t"
WHERE
	"t"."a" GLOB 'x' AND
	"t"."a" = 1 AND
	"t"."a" <> 1 AND
	"t"."a" < 1 AND
	"t"."a" <= 1 AND
	"t"."a" > 1 AND
	"t"."a" >= 1 AND
	"t"."a" LIKE 1 AND
	"t"."a" NOT LIKE 1 AND
	"t"."a" LIKE '%1%' AND
	"t"."a" NOT LIKE '%1%' AND
	"t"."a" LIKE '1%' AND
	"t"."a" NOT LIKE '1%' AND
	"t"."a" LIKE '%1' AND
	"t"."a" NOT LIKE '%1' AND
	"t"."a" IS NULL AND
	"t"."a" IS NOT NULL AND
	"t"."a" = "" AND
	"t"."a" <> "" AND
	"t"."a" BETWEEN 1 AND 2 AND
	"t"."a" NOT BETWEEN 1 AND 2 AND
	"t"."a" IN (1,2) AND
	"t"."a" NOT IN (1,2)
