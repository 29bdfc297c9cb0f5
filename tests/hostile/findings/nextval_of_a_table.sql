sqlserver s
SELECT y.n WHERE ROWNUM <= 5 AND seq.NEXTVAL > 1