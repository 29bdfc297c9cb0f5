postgresql main
SELECT NEXTVAL, id, CURRVAL