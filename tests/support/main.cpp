#include <fcntl.h>
#include <io.h>

#include <gtest/gtest.h>

int main(int argc, char** argv)
{
    _setmode(_fileno(stdout), _O_BINARY); // plain line feeds in redirected output
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
