// zrqb: the designer's knowledge of SQL in a pipeline.
#include <exception>
#include <iostream>

#include "command/commands.h"
#include "command/options.h"

int main(int argc, char** argv) {
  using namespace zrqrybld;
  try {
    const std::span<const char* const> arguments(argv, static_cast<std::size_t>(argc));
    return RunCommand(ReadOptions(arguments.subspan(1)), std::cout, std::cerr);
  } catch (const UsageError& error) {
    std::cerr << "zrqb: " << error.what() << "; see zrqb --help\n";
    return 2;
  } catch (const std::exception& error) {
    std::cerr << "zrqb: " << error.what() << '\n';
    return 1;
  }
}
