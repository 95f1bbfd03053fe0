#include "commands.h"
#include "shared/toolmain.h"

#include <iostream>

int main(int argc, char** argv)
{
    const CToolStreams streams;
    return runVlbackup(toolArguments(argc, argv), std::cin, std::cout, std::cerr);
}
