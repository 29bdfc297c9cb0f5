SELECT
	*
FROM
	(
		SELECT
			x
		FROM
			`orders`
			LEFT JOIN
			(
				SELECT
					`items`.`order_id`
				FROM
					`items`
				WHERE
					`items`.`n` > 1
			) AS `several`
			ON 
				`orders`.`id` = several.`order_id`
		LIMIT 5
	) AS `s`
