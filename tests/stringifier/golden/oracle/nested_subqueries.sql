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
		FETCH FIRST 5 ROWS ONLY
	) "s"
