SELECT
	o.id, 
	customers.name AS n
FROM
	orders AS o
	INNER JOIN
	customers
	ON 
		o.cust_id = customers.id
WHERE
	o.total > 100 AND
	customers.city LIKE '%x%'
ORDER BY
	o.id DESC
LIMIT 10
