SELECT c.last_name, s.district AS district, COUNT(r.id) AS rides, ROUND(SUM(r.distance_km) * 0.62) AS miles
FROM rental r
INNER JOIN customer c ON c.id = r.customer_id
LEFT JOIN (SELECT id, district FROM station WHERE closed_on IS NULL) s ON s.id = r.from_station_id
WHERE (r.started_at BETWEEN '2024-03-01' AND '2024-08-31' OR r.ended_at IS NULL)
    AND NOT c.last_name LIKE 'X%'
    AND r.tariff_id IN (1, 2, 3)
GROUP BY c.last_name, s.district
HAVING COUNT(r.id) > 2
ORDER BY rides DESC, c.last_name
LIMIT 20 OFFSET 1
