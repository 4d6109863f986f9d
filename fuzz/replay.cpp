// Runs the fuzz targets without a fuzzer, as a test: over the inputs that were kept, one folder a target, and over
// every line of the tables of cases.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#define ZRQRYBLD_TARGET(Name) extern "C" int Fuzz_##Name(const std::uint8_t* data, std::size_t size);
ZRQRYBLD_TARGETS
#undef ZRQRYBLD_TARGET

namespace {

struct Target {
  std::string name;
  int (*run)(const std::uint8_t* data, std::size_t size);
};
const Target kTargets[] = {
#define ZRQRYBLD_TARGET(Name) {#Name, Fuzz_##Name},
    ZRQRYBLD_TARGETS
#undef ZRQRYBLD_TARGET
};

std::string TextOf(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

// A target aborts, or a sanitizer does, where something is wrong.
std::size_t RunOn(const Target& target, const std::string& text) {
  EXPECT_EQ(target.run(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()), 0);
  return 1;
}

TEST(FuzzTargets, TakeWhatWasKeptAndEveryLineOfTheTables) {
  for (const Target& target : kTargets) {
    SCOPED_TRACE(target.name);
    std::size_t inputs = 0;
    const std::filesystem::path kept = std::filesystem::path(ZRQRYBLD_KEPT_INPUTS) / target.name;
    if (std::filesystem::exists(kept)) {
      for (const auto& file : std::filesystem::directory_iterator(kept)) inputs += RunOn(target, TextOf(file.path()));
    }
    for (const auto& file : std::filesystem::directory_iterator(ZRQRYBLD_TEST_DATA)) {
      std::ifstream lines(file.path());
      for (std::string line; std::getline(lines, line);) inputs += RunOn(target, line);
    }
    EXPECT_GT(inputs, 1000u);
  }
}

}  // namespace
