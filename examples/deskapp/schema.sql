-- The tables of one client's database. The set-up of the demonstration
-- clients and the installation of a new client both run this file; each
-- statement ends with a semicolon at the end of a line.

CREATE TABLE customer (
  nr INTEGER PRIMARY KEY,
  name VARCHAR(40) NOT NULL,
  street VARCHAR(40),
  zip VARCHAR(10),
  city VARCHAR(40),
  discount DOUBLE,            -- percent off the net price
  payment_days INTEGER,       -- days until payment is due
  credit_limit DOUBLE,        -- amount in the client's currency
  customer_since DATE,
  last_contact DATE,
  note VARCHAR(200)
);

CREATE TABLE article (
  nr INTEGER PRIMARY KEY,
  name VARCHAR(40) NOT NULL,
  net_price DOUBLE NOT NULL,  -- per unit, without VAT
  vat_percent DOUBLE NOT NULL,
  stock INTEGER,
  valid_from DATE
);

CREATE TABLE orders (
  nr INTEGER PRIMARY KEY,
  customer_nr INTEGER NOT NULL,
  article_nr INTEGER NOT NULL,
  quantity INTEGER NOT NULL,
  net_amount DOUBLE NOT NULL, -- quantity times price less the customer's discount
  order_date DATE NOT NULL
);
