sqlite main
SELECT a FROM z, w CROSS JOIN z CROSS APPLY f(t.a) x ON z.i = w.i