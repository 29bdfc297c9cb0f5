postgresql s
SELECT s.id FROM ( FROM (VALUES (1)) (SELECT id FROM FROM 1)) AS s