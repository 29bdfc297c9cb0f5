-- mysql mariadb postgresql oracle sqlite sqlserver
SELECT
	*
