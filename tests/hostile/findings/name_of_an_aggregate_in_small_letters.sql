oracle s
SELECT 1 FROM odd WHERE "count" = 1