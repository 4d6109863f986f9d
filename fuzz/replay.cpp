// Runs the fuzz targets without a fuzzer, as a test: over the inputs that were kept, one folder and one file of seeds a
// target, and over every line of the tables of cases.
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

// A line of seeds: "\xNN" is a byte.
std::string Unescaped(const std::string& line) {
  std::string text;
  for (std::size_t i = 0; i < line.size(); ++i) {
    const bool escaped = line[i] == '\\' && i + 3 < line.size();
    text += escaped ? static_cast<char>(std::stoi(line.substr(i + 2, 2), nullptr, 16)) : line[i];
    if (escaped) i += 3;
  }
  return text;
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
    const std::filesystem::path folder(ZRQRYBLD_FUZZ_FOLDER);
    const std::filesystem::path kept = folder / "kept" / target.name;
    if (std::filesystem::exists(kept)) {
      for (const auto& file : std::filesystem::directory_iterator(kept)) inputs += RunOn(target, TextOf(file.path()));
    }
    std::ifstream seeds(folder / ("seeds_" + target.name + ".txt"));
    for (std::string line; std::getline(seeds, line);) inputs += RunOn(target, Unescaped(line));
    if (target.name == "calls") continue;  // to it a text is any bytes
    for (const auto& file : std::filesystem::directory_iterator(ZRQRYBLD_TEST_DATA)) {
      std::ifstream lines(file.path());
      for (std::string line; std::getline(lines, line);) inputs += RunOn(target, line);
    }
    EXPECT_GT(inputs, 1000u);
  }
}

}  // namespace
