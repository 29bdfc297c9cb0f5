SELECT
	s.district, 
	customer.last_name, 
	COUNT(rental.id) AS rides
FROM
	rental
	LEFT JOIN
	payment
	ON 
		payment.rental_id = rental.id
	INNER JOIN
	repair
	USING (bike_id)
	INNER JOIN
	customer
	ON 
		customer.id = rental.customer_id
	INNER JOIN
	(
		SELECT
			id, 
			district
		FROM
			station
		WHERE
			station.closed_on IS NULL
	) AS s
	ON 
		s.id = rental.from_station_id
WHERE
	rental.started_at BETWEEN '2024-03-01' AND '2024-07-31' AND
	(
		payment.method IN ('card','app') OR
		rental.ended_at IS NULL
	)
GROUP BY
	s.district, 
	customer.last_name
HAVING
	COUNT(rental.id) > 2
ORDER BY
	s.district DESC, 
	customer.last_name ASC
LIMIT 5
OFFSET 1
