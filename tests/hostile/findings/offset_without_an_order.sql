sqlserver s
SELECT - 2 OFFSET 0 ROWS