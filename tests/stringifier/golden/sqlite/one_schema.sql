SELECT
	"a"."x", 
	"b"."y", 
	"a".*
FROM
	"a",
	"b"
