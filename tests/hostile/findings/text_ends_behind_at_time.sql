postgresql s
SELECT a ISNULL, b AT TIME