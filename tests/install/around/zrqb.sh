cp "$STORE" store.db
echo 'SELECT TOP 3 CompanyName FROM Customers' >query.sql
cp "$SOURCE/tests/data/first_release.zrq" query.zrq
# EXAMPLE
