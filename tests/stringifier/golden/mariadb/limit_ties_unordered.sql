SELECT
	`t`.`a`
FROM
	`t`
LIMIT 10
