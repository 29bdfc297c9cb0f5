postgresql s
SELECT * FROM ((a JOIN b ON a.id = b.id) AS x)