-- rows: mysql mariadb postgresql sqlite
LIMIT 10
-- rows: oracle
FETCH FIRST 10 ROWS ONLY
-- rows: sqlserver
ORDER BY 1
OFFSET 0 ROWS
FETCH NEXT 10 ROWS ONLY
-- no rows: mysql mariadb postgresql sqlite
LIMIT 0
-- no rows: oracle
FETCH FIRST 0 ROWS ONLY
-- no rows: sqlserver
ORDER BY 1
OFFSET 0 ROWS
FETCH NEXT 0 ROWS ONLY
-- offset: mysql mariadb
LIMIT 0, 18446744073709551615/* 2^64-1 */
-- offset: postgresql
OFFSET 0
-- offset: oracle
OFFSET 0 ROWS
-- offset: sqlite
LIMIT -1
OFFSET 0
-- offset: sqlserver
ORDER BY 1
OFFSET 0 ROWS
-- offset and rows, ordered: mysql mariadb
ORDER BY
	a ASC
LIMIT 5, 10
-- offset and rows, ordered: postgresql sqlite
ORDER BY
	a ASC
LIMIT 10
OFFSET 5
-- offset and rows, ordered: oracle sqlserver
ORDER BY
	a ASC
OFFSET 5 ROWS
FETCH NEXT 10 ROWS ONLY
-- percent with ties, ordered: mysql mariadb
ORDER BY
	a ASC
LIMIT 5, 10
-- percent with ties, ordered: postgresql sqlite
ORDER BY
	a ASC
LIMIT 10
OFFSET 5
-- percent with ties, ordered: oracle
ORDER BY
	a ASC
OFFSET 5 ROWS
FETCH NEXT 10 PERCENT ROWS WITH TIES
-- percent with ties, ordered: sqlserver
ORDER BY
	a ASC
OFFSET 5 ROWS
FETCH NEXT 10 ROWS ONLY
-- ties: mysql mariadb postgresql sqlite
LIMIT 10
-- ties: oracle
ORDER BY 1
FETCH FIRST 10 ROWS WITH TIES
-- ties: sqlserver
ORDER BY 1
OFFSET 0 ROWS
FETCH NEXT 10 ROWS ONLY
-- ties without rows: mysql mariadb
LIMIT 5, 18446744073709551615/* 2^64-1 */
-- ties without rows: postgresql
OFFSET 5
-- ties without rows: oracle sqlserver
ORDER BY 1
OFFSET 5 ROWS
-- ties without rows: sqlite
LIMIT -1
OFFSET 5
