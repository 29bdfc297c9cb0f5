SELECT
	[select].[a] AS [select], 
	true.[a] AS [true], 
	level.[a] AS [level], 
	[user].[a] AS [user], 
	name.[a] AS [name]
FROM
	[t] AS [select],
	[t] AS [true],
	[t] AS [level],
	[t] AS [user],
	[t] AS [name]
ORDER BY
	[select], 
	true, 
	level, 
	[user], 
	name
