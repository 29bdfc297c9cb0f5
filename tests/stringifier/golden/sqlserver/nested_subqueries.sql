SELECT
	*
FROM
	(
		SELECT
			x
		FROM
			[shop].[orders]
			LEFT JOIN
			(
				SELECT
					[items].[order_id]
				FROM
					[shop].[items]
				WHERE
					[items].[n] > 1
			) AS [several]
			ON 
				[orders].[id] = several.[order_id]
		ORDER BY 1
		OFFSET 0 ROWS
		FETCH NEXT 5 ROWS ONLY
	) AS [s]
