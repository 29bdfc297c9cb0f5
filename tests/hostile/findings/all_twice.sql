postgresql s
SELECT ALL ALL ((1) n.id)