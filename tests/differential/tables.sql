-- The tables that the statements of the construct table, of statements.txt and of random runs meet.
-- They are made so that a statement whose meaning changed gives other rows: columns called like
-- aliases, the same columns everywhere with other values, NULLs, duplicate rows, one row that all
-- tables share (so that natural joins find something), two schemas with the same tables, a temporary
-- table that hides a real one, names that need quotes or differ only in case, texts of several
-- lines, an empty table. "…" stands for the usual columns:
--
--     id integer, n integer, y integer, total integer, name varchar(100), x integer, s varchar(60)
--
-- and in PostgreSQL, which tells "Y" from y, "Y" and "O" behind them, whose values follow from the
-- others. A line "-- only FAMILIES" holds for the statement that follows.

-- only sqlite
ATTACH ':memory:' AS other;
-- only postgresql
CREATE SCHEMA other;
-- only mariadb
CREATE DATABASE other;

CREATE TABLE t (id integer, x integer, y integer, n integer, s varchar(60), g integer,
                total integer);
INSERT INTO t VALUES (1, 1, 2, 3, 'a', 5, 30), (2, 1, 2, 3, 'a', 4, 20), (3, NULL, 1, 2, 'A', 3, 10), (4, 3, NULL, 1, 'b', NULL, NULL), (5, 15, 16, NULL, NULL, 1, 5), (6, 2, 1, 3, 'a!b', 2, 4), (7, 2, 3, 4, 'it''s', 6, 1), (8, NULL, NULL, NULL, '', 7, 2), (9, -1, 3, 3, 'a%b', 8, 3), (10, 0, 5, 1, 'ba', 9, 9);
CREATE INDEX t_x ON t (x);

CREATE TABLE a (…);
INSERT INTO a VALUES (1, 3, 10, 5, 'one', 1, 'a'), (1, 2, 8, 9, 'one', 1, 'b'), (2, 1, 20, 5, 'two', 2, 'a'), (2, 1, 20, 5, 'two', 2, 'a'), (3, NULL, 15, 7, NULL, NULL, 'a'), (4, 2, NULL, 1, 'A!%', 2, NULL), (5, 3, 5, NULL, 'first line
	second line', 1, 'x'), (2, 1, 1, 2, 'b', 1, 'b'), (6, 6, 6, 6, 'six', 6, 'six');
CREATE TABLE b (…);
INSERT INTO b VALUES (1, 2, 7, 9, 'uno', 1, 'a'), (2, 1, 20, 5, 'two', 2, 'a'), (3, 3, NULL, 2, NULL, 2, 'c'), (3, 5, 15, 7, 'A%%', NULL, 'a'), (7, NULL, 1, 20, 'first line
    second line', 1, NULL), (2, 1, 1, 2, 'b', 1, 'b'), (6, 6, 6, 6, 'six', 6, 'six');
CREATE TABLE c (…);
INSERT INTO c VALUES (1, 1, 2, 2, 'one', 2, 'a'), (3, 3, 3, 7, 'cee', 1, 'x'), (5, 2, 1, NULL, NULL, NULL, 'a'), (2, 1, 1, 2, 'b', 1, 'b'), (6, 6, 6, 6, 'six', 6, 'six');
CREATE TABLE o (…);
INSERT INTO o VALUES (1, 1, 3, 15, 'order one', 2, 'own'), (2, 3, 2, NULL, 'two', NULL, 'own'), (4, NULL, NULL, 4, 'eins', 1, 'a'), (8, 2, 1, 10, NULL, 1, 'b'), (6, 6, 6, 6, 'six', 6, 'six');
CREATE TABLE g (…);
INSERT INTO g VALUES (2, 5, 1, 3, 'gee', 1, 'a'), (3, 3, 3, 3, 'one', 2, 'b'), (NULL, 1, 2, 2, 'x', NULL, 'g'), (6, 6, 6, 6, 'six', 6, 'six');
CREATE TABLE n (…);
INSERT INTO n VALUES (1, 4, 4, 4, 'en', 1, 'n'), (2, NULL, 8, 1, 'y', 2, 'a'), (6, 6, 6, 6, 'six', 6, 'six');
CREATE TABLE "order" (…);
INSERT INTO "order" VALUES (1, 7, 2, 4, 'first', 1, 'a'), (5, 3, 5, NULL, 'last', 2, 'b'), (5, 3, 5, NULL, 'last', 2, 'b'), (6, 6, 6, 6, 'six', 6, 'six');
CREATE TABLE "two words" (…);
INSERT INTO "two words" VALUES (2, 2, 1, 1, 'tw', 1, 'a'), (3, 9, 9, 2, 'A!%', 2, 'b'), (6, 6, 6, 6, 'six', 6, 'six');
CREATE TABLE "we""ird" (…);
INSERT INTO "we""ird" VALUES (4, 4, 1, 2, 'quote"s', 1, 'a'), (1, 2, 3, 4, 'it''s', 2, 'b'), (6, 6, 6, 6, 'six', 6, 'six');
CREATE TABLE empty (…);
CREATE TABLE one (v integer);
INSERT INTO one VALUES (1), (2);
CREATE TABLE odd (id integer, "user" integer, "2" integer, "My A" integer, "select" integer, "true" integer, "count" integer,
                  "current_date" integer, "two words" integer, "a""b" integer);
INSERT INTO odd VALUES (1, 9, 8, 7, 1, 5, 4, 3, 2, 4), (2, 3, 4, 5, 6, 7, 8, 9, 1, 3), (3, 5, NULL, 2, 9, 1, 7, 4, 2, 2), (4, 1, 6, 9, 2, 8, NULL, 5, NULL, 1);
CREATE TABLE words (id integer, "date" integer, "interval" integer, "left" integer, "row" integer, "values" integer, "end" integer,
                    "key" integer, "natural" integer, "exists" integer, "current_user" integer, "*" integer, "a.b" integer,
                    "first" varchar(100));
INSERT INTO words VALUES (1, 3, 5, 7, 9, 2, 4, 6, 8, 1, 3, 5, 7, 'one'), (2, 4, 6, 8, 1, 3, 5, 7, 9, 2, 4, 6, 8, 'two'), (2, 4, 6, 8, 1, 3, 5, 7, 9, 2, 4, 6, 8, 'two'), (3, 9, 8, 7, 6, 5, 4, 3, 2, 1, NULL, 9, 8, NULL);

CREATE TABLE other.a (…);
INSERT INTO other.a VALUES (1, 9, 1, 100, 'other one', 9, 'z'), (3, 8, 2, 200, 'two', 8, 'z'), (3, 8, 2, 200, 'two', 8, 'z'), (6, 6, 6, 6, 'six', 6, 'six');
CREATE TABLE other.b (…);
INSERT INTO other.b VALUES (2, 7, 9, 300, 'other b', 1, 'z'), (5, 1, 1, NULL, NULL, 2, 'a'), (6, 6, 6, 6, 'six', 6, 'six');
CREATE TABLE other.o (…);
INSERT INTO other.o VALUES (1, 5, 5, 400, 'other o', 1, 'other'), (4, 2, 2, 1, 'eins', NULL, 'other'), (2, 1, 3, 3, 'o', 1, 'other'), (6, 6, 6, 6, 'six', 6, 'six');
CREATE TABLE other."order" (…);
INSERT INTO other."order" VALUES (5, 2, 8, 500, 'other order', 1, 'z'), (6, 6, 6, 6, 'six', 6, 'six');
CREATE TABLE other."only here" (…);
INSERT INTO other."only here" VALUES (2, 3, 4, 600, 'only', 1, 'z'), (6, 6, 6, 6, 'six', 6, 'six');
CREATE TABLE other.one (v integer);
INSERT INTO other.one VALUES (15);

CREATE TABLE shade (…);
INSERT INTO shade VALUES (1, 1, 1, 1, 'real', 1, 'r'), (2, 2, 2, 2, 'real', 2, 'r'), (6, 6, 6, 6, 'six', 6, 'six');
CREATE TEMPORARY TABLE shade (…);
-- only sqlite
INSERT INTO temp.shade VALUES (1, 5, 3, 9, 'temporary', 3, 't'), (4, 4, 4, 4, 't', 4, 't'), (6, 6, 6, 6, 'six', 6, 'six');
-- only postgresql
INSERT INTO pg_temp.shade VALUES (1, 5, 3, 9, 'temporary', 3, 't'), (4, 4, 4, 4, 't', 4, 't'), (6, 6, 6, 6, 'six', 6, 'six');
-- only mariadb
INSERT INTO shade VALUES (1, 5, 3, 9, 'temporary', 3, 't'), (4, 4, 4, 4, 't', 4, 't'), (6, 6, 6, 6, 'six', 6, 'six');

-- only postgresql mariadb
CREATE TABLE "A" (…);
-- only postgresql mariadb
INSERT INTO "A" VALUES (1, 6, 2, 50, 'capital A', 1, 'A'), (2, 2, 2, 60, 'two', 2, 'A'), (6, 6, 6, 6, 'six', 6, 'six');
-- only postgresql mariadb
CREATE TABLE "O" (…);
-- only postgresql mariadb
INSERT INTO "O" VALUES (2, 4, 1, 70, 'capital O', 1, 'O'), (4, 1, 9, 80, NULL, 2, 'O'), (6, 6, 6, 6, 'six', 6, 'six');
-- only postgresql
CREATE TABLE parent (id integer, v integer);
-- only postgresql
CREATE TABLE child () INHERITS (parent);
-- only postgresql
INSERT INTO parent VALUES (1, 1);
-- only postgresql
INSERT INTO child VALUES (1, 2), (2, 3);
-- only mariadb
CREATE TABLE w (`1a` integer, a integer);
-- only mariadb
INSERT INTO w VALUES (7, 1), (8, 2);
