// Any bytes as a connection string: no secret is left in what is shown or logged, what is written is read back, and a
// file is never trusted with more than a person, nor a person with more than a program.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "zrqrybld/platform/connection_policy.h"
#include "zrqrybld/platform/connection_string.h"

namespace {

using namespace zrqrybld;

void Require(bool holds) {
  if (!holds) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  const ConnectionString connection(text);
  Require(!ConnectionString(connection.WithoutPassword()).HoldsSecret());
  Require(connection.HoldsSecret() || connection.WithoutPassword() == connection.Masked());

  // A key is looked for in all of its spellings, so a value may hold anything.
  for (const auto& [key, value] : connection.Parts()) {
    const ConnectionString written("Key=" + ConnectionString::QuoteValue(value) + ";Behind=1");
    Require(written.Get("KEY") == value && written.Get("behind") == "1");
  }

  const std::vector<std::string> drivers = {"SQLite3", "PostgreSQL Unicode"};
  const auto verdict = [&](ConnectionOrigin origin) { return JudgeConnection(text, origin, drivers).verdict; };
  Require(verdict(ConnectionOrigin::File) >= verdict(ConnectionOrigin::Person));
  Require(verdict(ConnectionOrigin::Person) >= verdict(ConnectionOrigin::Program));
  return 0;
}
