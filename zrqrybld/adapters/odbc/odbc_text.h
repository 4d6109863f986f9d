// Text between the library and ODBC: UTF-8 here, UTF-16 there. Only the adapter's sources include this.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace zrqrybld::odbc {

/// Bytes that are no UTF-8 become U+FFFD.
std::u16string ToUtf16(std::string_view text);

/// Half a surrogate pair becomes U+FFFD.
std::string ToUtf8(std::u16string_view text);

}  // namespace zrqrybld::odbc
