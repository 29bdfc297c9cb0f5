-- The tables that the cells run on. A line "-- only FAMILY" holds for the statement that follows.
-- The same names in every table, columns named like aliases, NULLs, duplicates, strings with
-- quotes and lines; the same tables with other rows in a second schema; a temporary table in front of
-- another of its name.

-- only sqlite
ATTACH ':memory:' AS other;
-- only postgresql
CREATE SCHEMA other;
-- only mariadb
CREATE DATABASE other;

CREATE TABLE t (id integer PRIMARY KEY, x integer, y integer, n integer, s varchar(60), g integer,
                total integer);
INSERT INTO t VALUES (1, 1, 2, 3, 'a', 5, 30), (2, 1, 2, 3, 'a', 4, 20), (3, NULL, 1, 2, 'A', 3, 10),
                     (4, 3, NULL, 1, 'b', NULL, NULL), (5, 15, 16, NULL, NULL, 1, 5),
                     (6, 2, 1, 3, 'a!b', 2, 4), (7, 2, 3, 4, 'it''s', 6, 1), (8, NULL, NULL, NULL, '', 7, 2),
                     (9, -1, 3, 3, 'a%b', 8, 3), (10, 0, 5, 1, 'ba', 9, 9);
CREATE INDEX t_x ON t (x);

CREATE TABLE a (id integer PRIMARY KEY, x integer, y integer, n integer, s varchar(60));
INSERT INTO a VALUES (1, 1, 2, 1, 'a'), (2, 1, 1, NULL, 'b'), (3, NULL, 3, 3, 'a'), (4, 2, 2, 1, NULL);
CREATE TABLE b (id integer PRIMARY KEY, x integer, y integer, n integer, s varchar(60));
INSERT INTO b VALUES (2, 1, 1, NULL, 'b'), (3, 2, 3, 3, 'c'), (4, NULL, 2, 2, 'a'), (5, 1, NULL, 1, 'a');
CREATE TABLE c (id integer PRIMARY KEY, x integer, y integer, n integer, s varchar(60));
INSERT INTO c VALUES (1, 2, 2, 1, 'a'), (3, 1, 3, 3, 'x'), (5, NULL, 1, 2, 'a'), (6, 1, 1, 1, NULL);
CREATE TABLE o (id integer PRIMARY KEY, x integer, y integer, n integer, s varchar(60));
INSERT INTO o VALUES (1, 2, 1, 3, 'own'), (7, NULL, 2, 1, 'own');
CREATE TABLE one (v integer);
INSERT INTO one VALUES (1), (2);
CREATE TABLE odd (id integer, "two words" integer, "select" integer, "a""b" integer);
INSERT INTO odd VALUES (1, 2, 1, 4), (2, 1, 2, 3), (3, 2, 1, 2);

CREATE TABLE shade (id integer, x integer);
INSERT INTO shade VALUES (1, 1), (2, 2);
CREATE TEMPORARY TABLE shade (id integer, x integer);
-- only sqlite
INSERT INTO temp.shade VALUES (3, 3), (4, 4), (5, 5);
-- only postgresql
INSERT INTO pg_temp.shade VALUES (3, 3), (4, 4), (5, 5);
-- only mariadb
INSERT INTO shade VALUES (3, 3), (4, 4), (5, 5);

CREATE TABLE other.a (id integer PRIMARY KEY, x integer, y integer, n integer, s varchar(60));
INSERT INTO other.a VALUES (1, 9, 9, 9, 'z'), (2, 8, 8, 8, 'z'), (9, 1, 1, 1, 'a');
CREATE TABLE other.o (id integer PRIMARY KEY, x integer, y integer, n integer, s varchar(60));
INSERT INTO other.o VALUES (1, 1, 1, 3, 'other'), (2, NULL, 2, 1, 'other'), (3, 1, 3, 3, 'other');
CREATE TABLE other.one (v integer);
INSERT INTO other.one VALUES (15);

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
