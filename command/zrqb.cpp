// zrqb: the designer's knowledge of SQL in a pipeline.
#include <exception>
#include <iostream>

#include "command/arguments.h"
#include "command/commands.h"
#include "command/options.h"

int main(int argc, char** argv) {
  using namespace zrqrybld;
  try {
    return RunCommand(ReadOptions(Arguments(argc, argv)), std::cout, std::cerr);
  } catch (const UsageError& error) {
    std::cerr << "zrqb: " << error.what() << "; see zrqb --help\n";
    return 2;
  } catch (const std::exception& error) {
    std::cerr << "zrqb: " << error.what() << '\n';
    return 1;
  }
}
