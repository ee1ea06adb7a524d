// main.cpp - the quarn command-line tool (see Tool.h)
#include <iostream>

#include "Tool.h"

int main(int argc, char **argv) { return quarn::tool::run(argc, argv, std::cout, std::cerr); }
