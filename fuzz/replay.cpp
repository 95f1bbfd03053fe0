#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

// Runs a fuzzer's check without the fuzzer: over the named files, and over what is left of each after
// its first bytes and without its last ones.
int main(int argc, char** argv)
{
    for (int i = 1; i < argc; ++i) {
        std::ifstream in(argv[i], std::ios::binary);
        const std::string bytes{std::istreambuf_iterator<char>(in), {}};
        if (bytes.empty()) {
            std::fprintf(stderr, "%s can't be read\n", argv[i]);
            return 1;
        }
        const auto* const data = reinterpret_cast<const uint8_t*>(bytes.data());
        const size_t step = bytes.size() / 50 + 1;
        for (size_t cut = 0; cut < bytes.size(); cut += step) {
            LLVMFuzzerTestOneInput(data + cut, bytes.size() - cut);
            LLVMFuzzerTestOneInput(data, bytes.size() - cut);
        }
    }
    return argc == 1;
}
