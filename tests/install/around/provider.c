#include <string.h>
#include <zrqrybld/zrqrybld.h>

static const zrq_value none = {ZRQ_NULL, 0, {0}};
static zrq_value text(const char* words) {
  zrq_value value = {ZRQ_STRING, 0, {0}};
  value.as.text.data = words;
  value.as.text.length = strlen(words);
  return value;
}

/* EXAMPLE */

int main(void) {
  zrq_handle connection = 0;
  return connect_to_planets(&connection);
}
