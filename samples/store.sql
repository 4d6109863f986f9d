-- The sample database "store": a wholesaler of food and drink. See README.md for what the tables are.
--
-- Every row is made by the script itself. Where rows should look as if chosen freely, a remainder of a
-- multiple of their number chooses, never chance, so that the database is the same each time.

-- Tables -------------------------------------------------------------------------------------------------

CREATE TABLE "Währungen" (
  "Kürzel"    CHAR(3)       NOT NULL PRIMARY KEY,
  "Name"      VARCHAR(30)   NOT NULL,
  "Zeichen"   VARCHAR(4),
  "Kurs in €" DECIMAL(12,4) NOT NULL  -- what one unit is worth in euros
);

CREATE TABLE Categories (
  CategoryID   INTEGER     NOT NULL PRIMARY KEY,
  CategoryName VARCHAR(30) NOT NULL UNIQUE,
  "Group"      VARCHAR(20) NOT NULL,
  Description  TEXT
);

CREATE TABLE Suppliers (
  SupplierID  INTEGER     NOT NULL PRIMARY KEY,
  CompanyName VARCHAR(50) NOT NULL,
  ContactName VARCHAR(40),
  City        VARCHAR(30) NOT NULL,
  Country     VARCHAR(30) NOT NULL,
  HomePage    TEXT
);

CREATE TABLE Products (
  ProductID    INTEGER       NOT NULL PRIMARY KEY,
  ProductName  VARCHAR(50)   NOT NULL UNIQUE,
  CategoryID   INTEGER       NOT NULL REFERENCES Categories (CategoryID),
  SupplierID   INTEGER       REFERENCES Suppliers (SupplierID),
  "Unit Price" DECIMAL(10,2) NOT NULL,
  UnitsInStock SMALLINT      NOT NULL DEFAULT 0,
  Discontinued BOOLEAN       NOT NULL DEFAULT FALSE
);

CREATE TABLE Employees (
  EmployeeID INTEGER     NOT NULL PRIMARY KEY,
  FirstName  VARCHAR(20) NOT NULL,
  LastName   VARCHAR(20) NOT NULL,
  Title      VARCHAR(30) NOT NULL,
  BirthDate  DATE        NOT NULL,
  HiredAt    DATETIME    NOT NULL,
  ReportsTo  INTEGER     REFERENCES Employees (EmployeeID),  -- nobody for the head of the house
  Notes      TEXT
);

CREATE TABLE Customers (
  CustomerID  CHAR(5)     NOT NULL PRIMARY KEY,
  CompanyName VARCHAR(50) NOT NULL,
  ContactName VARCHAR(40) NOT NULL,
  City        VARCHAR(30) NOT NULL,
  Country     VARCHAR(30) NOT NULL,
  Phone       VARCHAR(24),
  "Währung"   CHAR(3)     NOT NULL REFERENCES "Währungen",
  CreditLimit DECIMAL(10,2)
);

CREATE TABLE carriers (
  carrier_id   INTEGER     NOT NULL PRIMARY KEY,
  carrier_name VARCHAR(40) NOT NULL,
  phone        VARCHAR(24)
);

CREATE TABLE "Order" (
  OrderID      INTEGER NOT NULL PRIMARY KEY,
  CustomerID   CHAR(5) NOT NULL REFERENCES Customers (CustomerID),
  EmployeeID   INTEGER REFERENCES Employees (EmployeeID),  -- nobody: ordered without help
  OrderDate    DATE    NOT NULL,
  RequiredDate DATE,
  Freight      DECIMAL(8,2) NOT NULL DEFAULT 0,
  Comment      TEXT
);

CREATE TABLE "Order Lines" (
  OrderID      INTEGER       NOT NULL REFERENCES "Order" (OrderID),
  LineNo       SMALLINT      NOT NULL,
  ProductID    INTEGER       NOT NULL REFERENCES Products (ProductID),
  Quantity     INTEGER       NOT NULL CHECK (Quantity > 0),
  "Unit Price" DECIMAL(10,2) NOT NULL,
  Discount     REAL          NOT NULL DEFAULT 0,
  PRIMARY KEY (OrderID, LineNo)
);

CREATE TABLE Shipments (
  ShipmentID INTEGER  NOT NULL PRIMARY KEY,
  OrderID    INTEGER  NOT NULL,
  LineNo     SMALLINT NOT NULL,
  CarrierID  INTEGER  REFERENCES carriers (carrier_id),  -- nobody: fetched by the customer
  ShippedAt  DATETIME NOT NULL,
  Quantity   INTEGER  NOT NULL CHECK (Quantity > 0),
  FOREIGN KEY (OrderID, LineNo) REFERENCES "Order Lines" (OrderID, LineNo)
);

CREATE INDEX OrderOfCustomer ON "Order" (CustomerID);
CREATE INDEX LinesOfProduct ON "Order Lines" (ProductID);
CREATE INDEX ShipmentsOfLine ON Shipments (OrderID, LineNo);

-- Views --------------------------------------------------------------------------------------------------

CREATE VIEW OrderTotals AS
SELECT o.OrderID, o.CustomerID, o.OrderDate, count(l.LineNo) AS Lines,
       round(coalesce(sum(l.Quantity * l."Unit Price" * (1 - l.Discount)), 0), 2) AS Total
FROM "Order" AS o LEFT JOIN "Order Lines" AS l ON l.OrderID = o.OrderID
GROUP BY o.OrderID, o.CustomerID, o.OrderDate;

CREATE VIEW "Open Order Lines" AS
SELECT l.OrderID, l.LineNo, l.ProductID, l.Quantity
FROM "Order Lines" AS l LEFT JOIN Shipments AS s ON s.OrderID = l.OrderID AND s.LineNo = l.LineNo
WHERE s.ShipmentID IS NULL;

-- Rows ---------------------------------------------------------------------------------------------------

INSERT INTO "Währungen" VALUES
  ('EUR', 'Euro', '€', 1),
  ('CHF', 'Schweizer Franken', 'Fr.', 1.0417),
  ('GBP', 'Pfund Sterling', '£', 1.1682),
  ('SEK', 'Schwedische Krone', 'kr', 0.0885),
  ('PLN', 'Polnischer Złoty', 'zł', 0.2321),
  ('USD', 'US-Dollar', '$', 0.9243),
  ('JPY', 'Japanischer Yen', '¥', 0.0061);  -- no customer pays in it

INSERT INTO Categories VALUES
  (1, 'Coffee', 'Drinks', 'Roasted beans and ground coffee'),
  (2, 'Tea', 'Drinks', 'Black, green and herbal teas'),
  (3, 'Juices', 'Drinks', 'Pressed fruit, bottled'),
  (4, 'Cheese', 'Dairy', 'Hard and soft cheese from small dairies'),
  (5, 'Bread', 'Bakery', 'Loaves, rolls and crispbread'),
  (6, 'Cakes', 'Bakery', NULL),
  (7, 'Oils', 'Pantry', 'Cold-pressed oils and vinegars'),
  (8, 'Spices', 'Pantry', 'Whole and ground, by the jar'),
  (9, 'Ice cream', 'Frozen', NULL);  -- planned: no products yet

INSERT INTO Suppliers VALUES
  (1, 'Kaffeerösterei am Hafen', 'Jonas Petersen', 'Hamburg', 'Germany', 'https://roesterei.example'),
  (2, 'Highland Tea Gardens', 'Fiona Murray', 'Edinburgh', 'United Kingdom', NULL),
  (3, 'Obsthof Lindner', 'Greta Lindner', 'Konstanz', 'Germany', 'https://obsthof.example'),
  (4, 'Fromagerie du Lac', 'Luc Favre', 'Genève', 'Switzerland', 'https://fromagerie.example'),
  (5, 'Skåne Bageri', 'Elin Åberg', 'Malmö', 'Sweden', NULL),
  (6, 'Cukiernia Pod Lipą', 'Ewa Zielińska', 'Kraków', 'Poland', 'https://podlipa.example'),
  (7, 'Frantoio Bellini', 'Marco Bellini', 'Lucca', 'Italy', NULL),
  (8, 'O''Leary & Sons', NULL, 'Cork', 'Ireland', 'https://oleary.example'),
  (9, 'Especias del Sur', 'Inés Romero', 'Sevilla', 'Spain', 'https://especias.example'),
  (10, 'Maple Ridge Farms', 'Walter Brooks', 'Burlington', 'United States', NULL);  -- supplies nothing yet

-- Ten products of each of the first eight categories. Every eleventh has lost its supplier, every
-- seventeenth is no longer sold.
WITH RECURSIVE
  numbers (n) AS (SELECT 1 UNION ALL SELECT n + 1 FROM numbers WHERE n < 80),
  kinds (category, k, kind) AS (VALUES
    (1, 0, 'Espresso Beans'), (1, 1, 'Filter Coffee'), (2, 0, 'Breakfast Tea'), (2, 1, 'Green Tea'),
    (3, 0, 'Apple Juice'), (3, 1, 'Pear Juice'), (4, 0, 'Mountain Cheese'), (4, 1, 'Goat Cheese'),
    (5, 0, 'Rye Bread'), (5, 1, 'Crispbread'), (6, 0, 'Almond Cake'), (6, 1, 'Poppy Seed Cake'),
    (7, 0, 'Olive Oil'), (7, 1, 'Walnut Oil'), (8, 0, 'Black Pepper'), (8, 1, 'Smoked Paprika')),
  grades (g, grade) AS (VALUES
    (0, 'Classic'), (1, 'Organic'), (2, 'Reserve'), (3, 'Village'), (4, 'Old Town'))
INSERT INTO Products
SELECT n, grade || ' ' || kind, category,
       CASE WHEN n % 11 = 0 THEN NULL WHEN category = 8 AND n % 4 = 0 THEN 8 ELSE category + (category = 8) END,
       1.5 + (n * 37 % 90) / 4.0 + 0.49, n * 53 % 140, n % 17 = 0
FROM numbers
JOIN kinds ON category = (n - 1) / 10 + 1 AND k = (n - 1) % 2
JOIN grades ON g = (n - 1) % 10 / 2
ORDER BY n;

INSERT INTO Employees VALUES
  (1, 'Helene', 'Brandt', 'Managing Director', '1968-03-14', '2004-01-05 08:30:00', NULL, 'Founded the house.'),
  (2, 'Thomas', 'Okafor', 'Head of Sales', '1975-11-02', '2006-04-18 09:00:00', 1, NULL),
  (3, 'Sofia', 'Marino', 'Head of Purchasing', '1979-07-21', '2009-09-01 09:00:00', 1, 'Speaks Italian and Spanish.'),
  (4, 'Erik', 'Lindqvist', 'Head of Warehouse', '1971-01-30', '2007-02-12 07:00:00', 1, NULL),
  (5, 'Amélie', 'Dubois', 'Sales Manager', '1983-05-09', '2012-03-01 09:00:00', 2, 'Looks after the south.'),
  (6, 'Piotr', 'Nowak', 'Sales Manager', '1986-12-17', '2014-08-15 09:00:00', 2, 'Looks after the east.'),
  (7, 'Grace', 'Whitfield', 'Sales Representative', '1990-02-25', '2016-05-02 09:00:00', 5, NULL),
  (8, 'Mateo', 'Vargas', 'Sales Representative', '1992-08-08', '2018-10-01 09:00:00', 5, NULL),
  (9, 'Johanna', 'Krüger', 'Sales Representative', '1988-06-11', '2015-01-12 09:00:00', 6, NULL),
  (10, 'Daniel', 'O''Brien', 'Sales Representative', '1994-04-03', '2020-07-01 09:00:00', 6, 'Part-time.'),
  (11, 'Nina', 'Horvat', 'Buyer', '1989-10-29', '2017-03-20 09:00:00', 3, NULL),
  (12, 'Samuel', 'Keller', 'Forklift Driver', '1996-09-15', '2021-11-08 06:30:00', 4, NULL);

INSERT INTO carriers VALUES
  (1, 'Northern Parcel', '+46 40 555 0101'),
  (2, 'Alpenkurier', '+41 44 555 0102'),
  (3, 'Harbour Freight Lines', '+49 40 555 0103'),
  (4, 'Green Wheels', NULL),
  (5, 'Express Nine', '+44 20 555 0105');  -- has never carried anything

-- 150 customers. Every ninth has no telephone, every seventh no limit.
WITH RECURSIVE
  numbers (n) AS (SELECT 1 UNION ALL SELECT n + 1 FROM numbers WHERE n < 150),
  places (p, place) AS (VALUES
    (0, 'Harbour'), (1, 'Market'), (2, 'Riverside'), (3, 'Garden'), (4, 'Station'), (5, 'Hillside'),
    (6, 'Corner'), (7, 'Castle'), (8, 'Lakeside'), (9, 'Old Mill')),
  trades (t, trade) AS (VALUES
    (0, 'Café'), (1, 'Bakery'), (2, 'Delicatessen'), (3, 'Bistro'), (4, 'Hotel'), (5, 'Grocery'), (6, 'Kitchen')),
  firsts (f, first) AS (VALUES
    (0, 'Anna'), (1, 'Ben'), (2, 'Clara'), (3, 'David'), (4, 'Eva'), (5, 'Felix'), (6, 'Ida'), (7, 'Karl'),
    (8, 'Lena'), (9, 'Mikael'), (10, 'Zoë')),
  lasts (l, last) AS (VALUES
    (0, 'Berg'), (1, 'Carter'), (2, 'Dahl'), (3, 'Fischer'), (4, 'Garcia'), (5, 'Hansen'), (6, 'Ivanova'),
    (7, 'Jansen'), (8, 'Kowalski'), (9, 'Meyer'), (10, 'Novák'), (11, 'Rossi'), (12, 'Smith')),
  towns (c, city, country, currency) AS (VALUES
    (0, 'Berlin', 'Germany', 'EUR'), (1, 'Zürich', 'Switzerland', 'CHF'), (2, 'London', 'United Kingdom', 'GBP'),
    (3, 'Malmö', 'Sweden', 'SEK'), (4, 'Kraków', 'Poland', 'PLN'), (5, 'Lyon', 'France', 'EUR'),
    (6, 'Boston', 'United States', 'USD'), (7, 'Porto', 'Portugal', 'EUR'), (8, 'München', 'Germany', 'EUR'),
    (9, 'Leeds', 'United Kingdom', 'GBP'), (10, 'Göteborg', 'Sweden', 'SEK'))
INSERT INTO Customers
SELECT upper(substr(place, 1, 2)) || printf('%03d', n), place || ' ' || trade || ' ' || city, first || ' ' || last,
       city, country, CASE WHEN n % 9 > 0 THEN printf('555 %04d', n * 271 % 10000) END, currency,
       CASE WHEN n % 7 > 0 THEN 500.0 * (1 + n * 13 % 20) END
FROM numbers
JOIN places ON p = n * 7 % 10
JOIN trades ON t = n * 5 % 7
JOIN firsts ON f = n * 3 % 11
JOIN lasts ON l = n * 8 % 13
JOIN towns ON c = n * 4 % 11
ORDER BY n;

-- 1,000 orders over three years, almost one a day. Two in three come from a few regulars, the third
-- goes round all that order; every tenth customer has never ordered.
WITH RECURSIVE
  numbers (n) AS (SELECT 1 UNION ALL SELECT n + 1 FROM numbers WHERE n < 1000),
  buyers AS (SELECT CustomerID, row_number() OVER (ORDER BY rowid) - 1 AS b FROM Customers WHERE rowid % 10 > 0)
INSERT INTO "Order"
SELECT 10000 + n, CustomerID, CASE WHEN n % 8 > 0 THEN 5 + n * 11 % 6 END,
       date('2021-01-04', '+' || (n * 1090 / 1000) || ' days'),
       CASE WHEN n % 5 > 0 THEN date('2021-01-04', '+' || (n * 1090 / 1000 + 7 + n % 15) || ' days') END,
       4.9 + n * 29 % 60, CASE WHEN n % 23 = 0 THEN 'Please ring the bell at the yard.' END
FROM numbers JOIN buyers ON b = CASE n % 3 WHEN 0 THEN n * 7 % 20 WHEN 1 THEN n / 3 * 61 % 135 ELSE (n / 3) * (n / 3) % 97 END
ORDER BY n;

-- One to five lines an order, except that every 97th order has none yet. Every thirteenth product has
-- never been ordered.
WITH RECURSIVE
  lines (n) AS (SELECT 1 UNION ALL SELECT n + 1 FROM lines WHERE n < 5),
  offered AS (SELECT ProductID, "Unit Price", row_number() OVER (ORDER BY ProductID) - 1 AS p
              FROM Products WHERE ProductID % 13 > 0)
INSERT INTO "Order Lines"
SELECT o.OrderID, n, ProductID, 1 + (o.OrderID * 3 + n * 17) % 24, "Unit Price",
       CASE (o.OrderID + n) % 9 WHEN 0 THEN 0.1 WHEN 4 THEN 0.05 ELSE 0 END
FROM "Order" AS o JOIN lines ON n <= 1 + o.OrderID * 7 % 5
JOIN offered ON p = (o.OrderID * 31 + n * 19) % 74
WHERE o.OrderID % 97 > 0
ORDER BY o.OrderID, n;

-- Most lines are shipped, a large one in two parts; those of the last orders are still waiting, and so
-- is a line here and there.
INSERT INTO Shipments
SELECT row_number() OVER (ORDER BY l.OrderID, l.LineNo, part), l.OrderID, l.LineNo,
       CASE WHEN l.OrderID % 12 > 0 THEN 1 + l.OrderID * 5 % 4 END,
       datetime(o.OrderDate, '+' || (1 + (l.OrderID + l.LineNo) % 6 + 3 * part) || ' days',
                '+' || (8 * 60 + l.OrderID * 7 % 540) || ' minutes'),
       CASE WHEN l.Quantity < 20 THEN l.Quantity WHEN part = 0 THEN 12 ELSE l.Quantity - 12 END
FROM "Order Lines" AS l
JOIN "Order" AS o ON o.OrderID = l.OrderID
JOIN (SELECT 0 AS part UNION ALL SELECT 1) ON part = 0 OR l.Quantity >= 20
WHERE l.OrderID <= 10960 AND (l.OrderID + 2 * l.LineNo) % 19 > 0;
