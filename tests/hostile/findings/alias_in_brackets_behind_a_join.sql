postgresql 
SELECT * FROM (x, a) AS (s)