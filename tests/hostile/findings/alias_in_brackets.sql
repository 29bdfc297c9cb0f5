sqlite main
SELECT * FROM (a) AS (p) WHERE (p).id = 1