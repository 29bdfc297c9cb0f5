SELECT
	`t`.`a`
FROM
	`t`
ORDER BY
	`t`.`a` ASC
LIMIT 0
