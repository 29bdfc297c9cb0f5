sqlite main
SELECT t. t.a FROM main.t, u