// The statements that reading is measured with.
#pragma once

#include <string_view>

namespace zrqrybld::bench {

/// 150 and 900 bytes, as people write them.
inline constexpr std::string_view kShortStatement =
    "SELECT c.name, o.total FROM customers c INNER JOIN orders o ON c.id = o.customer_id WHERE o.total > 100 AND "
    "c.city = 'Berlin' ORDER BY o.total DESC";
inline constexpr std::string_view kLongStatement =
    "SELECT DISTINCT c.id, c.name AS customer, c.city, c.country, o.id AS order_id, o.order_date, o.ship_date, "
    "p.name AS product, p.price, l.quantity, l.quantity * p.price * (1 - l.discount) AS amount, s.name AS supplier "
    "FROM customers AS c INNER JOIN orders AS o ON o.customer_id = c.id INNER JOIN lines AS l ON l.order_id = o.id "
    "INNER JOIN products AS p ON p.id = l.product_id LEFT JOIN suppliers AS s ON s.id = p.supplier_id WHERE "
    "(c.country = 'Germany' OR c.country = 'Austria' OR c.country IN ('Switzerland', 'France')) AND o.order_date "
    "BETWEEN '2020-01-01' AND '2020-12-31' AND p.price >= 10.5 AND p.name LIKE 'A%' AND l.discount IS NOT NULL AND "
    "NOT (l.quantity < 5 AND p.price > 1000) AND EXISTS (SELECT 1 FROM stock k WHERE k.product_id = p.id AND "
    "k.amount > 0) AND CASE WHEN o.ship_date IS NULL THEN 0 ELSE 1 END = 1 ORDER BY c.country, c.city DESC, "
    "o.order_date, amount DESC";

}  // namespace zrqrybld::bench
