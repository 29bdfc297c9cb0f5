SELECT
	[a].[x], 
	[b].[y], 
	[a].*
FROM
	[shop].[a],
	[shop].[b]
