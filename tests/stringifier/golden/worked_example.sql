-- mysql mariadb postgresql sqlite
SELECT
	o."id", 
	"customers"."name" AS "n"
FROM
	"orders" AS "o"
	INNER JOIN
	"customers"
	ON 
		o."cust_id" = "customers"."id"
WHERE
	o."total" > 100 AND
	"customers"."city" LIKE '%x%'
ORDER BY
	o."id" DESC
LIMIT 10
-- oracle
SELECT
	"o"."id", 
	"customers"."name" AS "n"
FROM
	"orders" "o"
	INNER JOIN
	"customers"
	ON 
		"o"."cust_id" = "customers"."id"
WHERE
	"o"."total" > 100 AND
	"customers"."city" LIKE '%x%'
ORDER BY
	"o"."id" DESC
FETCH FIRST 10 ROWS ONLY
-- sqlserver
SELECT
	o."id", 
	"customers"."name" AS "n"
FROM
	"shop"."orders" AS "o"
	INNER JOIN
	"shop"."customers"
	ON 
		o."cust_id" = "customers"."id"
WHERE
	o."total" > 100 AND
	"customers"."city" LIKE '%x%'
ORDER BY
	o."id" DESC
OFFSET 0 ROWS
FETCH NEXT 10 ROWS ONLY
