#include "commands.h"
#include "shared/toolmain.h"

#include <chrono>
#include <iostream>
#include <thread>

namespace {

bool waitALittle()
{
    std::this_thread::sleep_for(std::chrono::milliseconds(250));
    return true;
}

} // namespace

int main(int argc, char** argv)
{
    const CToolStreams streams;
    return vltrace::runVltrace(toolArguments(argc, argv), std::cin, std::cout, std::cerr,
                               waitALittle);
}
