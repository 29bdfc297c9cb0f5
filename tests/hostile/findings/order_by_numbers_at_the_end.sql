mysql s
SELECT a.id, empty.id FROM a LEFT JOIN empty ON a.id = empty.id ORDER BY 1, 2