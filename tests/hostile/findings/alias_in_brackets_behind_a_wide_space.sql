postgresql 
SELECT * FROM (␊␉SELECT , a␊) AS (s)