-- mysql mariadb postgresql sqlite
SELECT
	*
FROM
	(
		SELECT
			x
		FROM
			"orders"
			LEFT JOIN
			(
				SELECT
					"items"."order_id"
				FROM
					"items"
				WHERE
					"items"."n" > 1
			) AS "several"
			ON 
				"orders"."id" = several."order_id"
	) AS "s"
-- oracle
SELECT
	*
FROM
	(
		SELECT
			x
		FROM
			"orders"
			LEFT JOIN
			(
				SELECT
					"items"."order_id"
				FROM
					"items"
				WHERE
					"items"."n" > 1
			) "several"
			ON 
				"orders"."id" = "several"."order_id"
	) "s"
-- sqlserver
SELECT
	*
FROM
	(
		SELECT
			x
		FROM
			"shop"."orders"
			LEFT JOIN
			(
				SELECT
					"items"."order_id"
				FROM
					"shop"."items"
				WHERE
					"items"."n" > 1
			) AS "several"
			ON 
				"orders"."id" = several."order_id"
	) AS "s"
