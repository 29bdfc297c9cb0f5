-- The sample database: the bicycle rental of a made-up town.
--
-- Each statement ends with a semicolon at the end of a line, and no other line ends with one; the
-- program that reads this script relies on it. Rows that come in numbers are computed, always the
-- same ones. Raise user_version below with every change.

PRAGMA user_version = 1;

CREATE TABLE station (
    id INTEGER PRIMARY KEY,
    name TEXT NOT NULL,
    street TEXT NOT NULL,
    district TEXT NOT NULL,
    opened_on DATE NOT NULL,
    closed_on DATE
);

CREATE TABLE dock (
    station_id INTEGER NOT NULL REFERENCES station (id),
    dock_no INTEGER NOT NULL,
    has_charger INTEGER NOT NULL DEFAULT 0,
    PRIMARY KEY (station_id, dock_no)
) WITHOUT ROWID;

CREATE TABLE bike_model (
    id INTEGER PRIMARY KEY,
    maker TEXT NOT NULL,
    name TEXT NOT NULL,
    kind TEXT NOT NULL CHECK (kind IN ('city', 'cargo', 'electric', 'children')),
    gears INTEGER,
    weight_kg NUMERIC(4, 1) NOT NULL,
    paint BLOB
);

CREATE TABLE bike (
    id INTEGER PRIMARY KEY,
    model_id INTEGER NOT NULL REFERENCES bike_model (id),
    frame_no TEXT NOT NULL UNIQUE,
    bought_on DATE NOT NULL,
    station_id INTEGER,
    dock_no INTEGER,
    FOREIGN KEY (station_id, dock_no) REFERENCES dock (station_id, dock_no)
);

CREATE TABLE employee (
    id INTEGER PRIMARY KEY,
    name TEXT NOT NULL,
    role TEXT NOT NULL,
    manager_id INTEGER REFERENCES employee (id),
    station_id INTEGER REFERENCES station (id)
);

CREATE TABLE customer (
    id INTEGER PRIMARY KEY,
    first_name TEXT NOT NULL,
    last_name TEXT NOT NULL,
    email TEXT,
    born_on DATE,
    recommended_by INTEGER REFERENCES customer (id),
    note TEXT
);

CREATE TABLE tariff (
    id INTEGER PRIMARY KEY,
    name TEXT NOT NULL UNIQUE,
    price_per_minute NUMERIC(5, 2) NOT NULL,
    price_per_day NUMERIC(5, 2)
);

CREATE TABLE rental (
    id INTEGER PRIMARY KEY,
    bike_id INTEGER NOT NULL REFERENCES bike (id),
    customer_id INTEGER NOT NULL REFERENCES customer (id),
    tariff_id INTEGER NOT NULL REFERENCES tariff (id),
    from_station_id INTEGER NOT NULL REFERENCES station (id),
    to_station_id INTEGER REFERENCES station (id),
    started_at DATETIME NOT NULL,
    ended_at DATETIME,
    distance_km NUMERIC(5, 1)
);

CREATE TABLE payment (
    id INTEGER PRIMARY KEY,
    rental_id INTEGER NOT NULL REFERENCES rental (id),
    paid_on DATE NOT NULL,
    method TEXT NOT NULL,
    amount NUMERIC(7, 2) NOT NULL
);

CREATE TABLE repair (
    id INTEGER PRIMARY KEY,
    bike_id INTEGER NOT NULL REFERENCES bike (id),
    employee_id INTEGER NOT NULL REFERENCES employee (id),
    opened_on DATE NOT NULL,
    closed_on DATE,
    problem TEXT NOT NULL
);

CREATE TABLE part (
    id INTEGER PRIMARY KEY,
    name TEXT NOT NULL,
    price NUMERIC(6, 2) NOT NULL,
    in_stock INTEGER NOT NULL
);

CREATE TABLE repair_part (
    repair_id INTEGER NOT NULL REFERENCES repair (id),
    part_id INTEGER NOT NULL REFERENCES part (id),
    quantity INTEGER NOT NULL DEFAULT 1,
    PRIMARY KEY (repair_id, part_id)
) WITHOUT ROWID;

CREATE INDEX rental_by_customer ON rental (customer_id, started_at);
CREATE INDEX rental_by_bike ON rental (bike_id, started_at);

INSERT INTO station (id, name, street, district, opened_on, closed_on) VALUES
    (1, 'Hauptbahnhof', 'Bahnhofplatz 1', 'Mitte', '2019-04-01', NULL),
    (2, 'Marktplatz', 'Markt 14', 'Mitte', '2019-04-01', NULL),
    (3, 'Universität', 'Schlossallee 3', 'Süd', '2019-04-15', NULL),
    (4, 'Mühlentor', 'Am Mühlentor 7', 'Nord', '2019-06-01', NULL),
    (5, 'Klinikum', 'Röntgenstraße 22', 'Süd', '2019-09-12', NULL),
    (6, 'Fährhafen', 'Kaistraße 60', 'Hafen', '2020-05-02', NULL),
    (7, 'Messe', 'Messeweg 100', 'Nord', '2020-05-02', '2023-12-31'),
    (8, 'Stadtpark', 'Lindenallee 41', 'West', '2021-03-20', NULL),
    (9, 'Grünau', 'Zur Kapelle 5', 'West', '2022-07-09', NULL),
    (10, 'Flughafen', 'Terminalring 2', 'Ost', '2023-04-01', NULL);

WITH RECURSIVE n (i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 12)
INSERT INTO dock (station_id, dock_no, has_charger)
SELECT station.id, i, i <= station.id % 4 FROM station, n WHERE i <= 6 + station.id * 7 % 7;

INSERT INTO bike_model (id, maker, name, kind, gears, weight_kg, paint) VALUES
    (1, 'Nordrad', 'Möwe', 'city', 7, 15.8, x'2f6fb0ff'),
    (2, 'Nordrad', 'Möwe Plus', 'electric', 9, 22.4, x'1b9e77ff'),
    (3, 'Velowerk', 'Packesel', 'cargo', 8, 34.0, x'd95f02ff'),
    (4, 'Velowerk', 'Packesel E', 'cargo', NULL, 41.5, x'7570b3ff'),
    (5, 'Kettler & Söhne', 'Flitzer', 'city', 3, 14.2, NULL),
    (6, 'Kettler & Söhne', 'Zwerg', 'children', NULL, 9.1, x'e7298aff'),
    (7, 'Ångström Cykel', 'Blåbär', 'city', 5, 16.0, x'66a61eff');

WITH RECURSIVE n (i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 72)
INSERT INTO bike (id, model_id, frame_no, bought_on)
SELECT i, 1 + i * i % 7, printf('CB-%02d-%05d', 19 + i % 6, 10007 * i % 99991),
       date('2019-03-01', (i * 37 % 1800) || ' days')
FROM n;

-- Every second bike stands in a dock; the others are under way or in the workshop.
WITH place AS (
    SELECT station_id, dock_no, row_number() OVER (ORDER BY dock_no, station_id) AS position
    FROM dock WHERE station_id <> 7
)
UPDATE bike
SET station_id = (SELECT station_id FROM place WHERE position = bike.id / 2),
    dock_no = (SELECT dock_no FROM place WHERE position = bike.id / 2)
WHERE id % 2 = 0;

INSERT INTO employee (id, name, role, manager_id, station_id) VALUES
    (1, 'Dr. Käthe Vogelsang', 'managing director', NULL, NULL),
    (2, 'Jörg Petersen', 'head of workshop', 1, NULL),
    (3, 'Aylin Yıldız', 'head of stations', 1, NULL),
    (4, 'Björn Nyström', 'mechanic', 2, 1),
    (5, 'Françoise Lemaître', 'mechanic', 2, 4),
    (6, 'Uwe Groß', 'mechanic', 2, 6),
    (7, 'Zoë O''Neill', 'apprentice', 4, 1),
    (8, 'Miloš Dvořák', 'station keeper', 3, 2),
    (9, 'Änne Schäfer', 'station keeper', 3, 3),
    (10, 'Null, Peter', 'station keeper', 3, 10);

WITH RECURSIVE
    n (i) AS (SELECT 0 UNION ALL SELECT i + 1 FROM n WHERE i < 119),
    first_names (k, name) AS (VALUES
        (0, 'Jürgen'), (1, 'Mia'), (2, 'Sören'), (3, 'Leyla'), (4, 'Günther'), (5, 'Chloé'),
        (6, 'Tom'), (7, 'Bärbel'), (8, 'Noah'), (9, 'Inês'), (10, 'Kai')),
    last_names (k, name) AS (VALUES
        (0, 'Müller'), (1, 'Schröder'), (2, 'Weiß'), (3, 'Özdemir'), (4, 'Jäger'), (5, 'Hansen'),
        (6, 'Köhler'), (7, 'Brandt'), (8, 'van der Veen'), (9, 'Böhm'), (10, 'Lang'), (11, 'D''Angelo'),
        (12, 'Nowak'))
INSERT INTO customer (id, first_name, last_name, email, born_on, recommended_by, note)
SELECT i + 1, first_names.name, last_names.name,
       CASE WHEN i % 9 <> 4 THEN printf('kunde%03d@example.org', i + 1) END,
       CASE WHEN i % 5 <> 2 THEN date('1950-01-01', (i * 197 % 20000) || ' days') END,
       CASE WHEN i % 3 = 1 THEN 1 + i * 61 % 89 % i END,
       CASE i % 20
           WHEN 3 THEN 'prefers bikes with a low step'
           WHEN 11 THEN 'Rechnung an die Firma, bitte mit Kostenstelle'
           WHEN 17 THEN 'NULL'
       END
FROM n
JOIN first_names ON first_names.k = i % 11
JOIN last_names ON last_names.k = i * 5 % 13;

INSERT INTO tariff (id, name, price_per_minute, price_per_day) VALUES
    (1, 'Basis', 0.10, 12.00),
    (2, 'Student', 0.05, 8.00),
    (3, 'Vielfahrer', 0.03, 6.50),
    (4, 'Fracht', 0.18, NULL);

WITH RECURSIVE
    n (i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 640),
    ride AS (
        SELECT i, 1 + i * 29 % 72 AS bike_id, 1 + i * 53 % 120 AS customer_id,
               datetime('2024-03-01 06:10:00', (i * 407 + i * i % 211) || ' minutes') AS started_at,
               4 + i * 17 % 83 AS minutes,
               replace(1 + i * i % 31 % 10, 7, 1) AS from_id, replace(1 + i * 3 % 10, 7, 2) AS to_id
        FROM n
    )
INSERT INTO rental (id, bike_id, customer_id, tariff_id, from_station_id, to_station_id,
                    started_at, ended_at, distance_km)
SELECT i, bike_id, customer_id,
       CASE WHEN bike_model.kind = 'cargo' THEN 4 ELSE 1 + customer_id % 3 END,
       from_id,
       CASE WHEN i <= 633 THEN to_id END,
       started_at,
       CASE WHEN i <= 633 THEN datetime(started_at, minutes || ' minutes') END,
       CASE WHEN i <= 633 AND i % 31 <> 0 THEN round(minutes * (0.12 + i % 7 * 0.02), 1) END
FROM ride
JOIN bike ON bike.id = bike_id
JOIN bike_model ON bike_model.id = bike.model_id;

INSERT INTO payment (id, rental_id, paid_on, method, amount)
SELECT rental.id, rental.id, date(ended_at, (rental.id % 3) || ' days'),
       CASE rental.id % 4 WHEN 0 THEN 'invoice' WHEN 1 THEN 'card' ELSE 'app' END,
       round((julianday(ended_at) - julianday(started_at)) * 1440 * price_per_minute, 2)
FROM rental
JOIN tariff ON tariff.id = tariff_id
WHERE ended_at IS NOT NULL AND rental.id % 40 <> 7;

INSERT INTO part (id, name, price, in_stock) VALUES
    (1, 'brake pad', 6.50, 120),
    (2, 'chain, 116 links', 18.90, 23),
    (3, 'inner tube 28″', 5.20, 200),
    (4, 'saddle “Komfort”', 32.00, 11),
    (5, 'bell', 4.80, 64),
    (6, 'rear light', 21.40, 0),
    (7, 'Schutzblech für Möwe', 27.30, 8);

WITH RECURSIVE
    n (i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 90),
    problems (k, text) AS (VALUES
        (0, 'flat tyre'), (1, 'brake squeals'), (2, 'Kette springt über'), (3, 'saddle is loose'),
        (4, 'light does not work'), (5, 'Klingel fehlt'))
INSERT INTO repair (id, bike_id, employee_id, opened_on, closed_on, problem)
SELECT i, 1 + i * 31 % 72, 4 + i % 4, date('2024-03-02', (i * 2) || ' days'),
       CASE WHEN i <= 82 THEN date('2024-03-02', (i * 2 + i % 5) || ' days') END, text
FROM n JOIN problems ON problems.k = i % 6;

INSERT INTO repair_part (repair_id, part_id, quantity)
SELECT id, CASE id % 6 WHEN 0 THEN 3 WHEN 1 THEN 1 WHEN 2 THEN 2 WHEN 3 THEN 4 WHEN 4 THEN 6 ELSE 5 END,
       1 + (id % 6 = 1)
FROM repair WHERE closed_on IS NOT NULL;

INSERT INTO repair_part (repair_id, part_id, quantity)
SELECT id, 7, 1 FROM repair WHERE closed_on IS NOT NULL AND id % 11 = 0;

CREATE VIEW open_rental AS
SELECT rental.id AS rental_id, first_name || ' ' || last_name AS customer, maker, bike_model.name AS model,
       station.name AS from_station, started_at
FROM rental
JOIN customer ON customer.id = customer_id
JOIN bike ON bike.id = bike_id
JOIN bike_model ON bike_model.id = model_id
JOIN station ON station.id = from_station_id
WHERE ended_at IS NULL;

CREATE VIEW station_turnover AS
SELECT station.id AS station_id, station.name AS station, count(rental.id) AS rentals,
       round(sum(amount), 2) AS turnover
FROM station
LEFT JOIN rental ON rental.from_station_id = station.id
LEFT JOIN payment ON payment.rental_id = rental.id
GROUP BY station.id;
