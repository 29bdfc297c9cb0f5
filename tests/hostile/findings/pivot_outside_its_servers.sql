mariadb main
SELECT s.id FROM ((SELECT id FROM a WHERE n = 1)) PIVOT (SUM(a) FOR b IN (1))