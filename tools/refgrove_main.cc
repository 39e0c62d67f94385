// refgrove: command-line tools around the refgrove data files.
#include <iostream>

#include "tools/commands.h"

int main(int argc, char** argv) { return refgrove::refgrove_main(argc, argv, std::cin, std::cout, std::cerr); }
