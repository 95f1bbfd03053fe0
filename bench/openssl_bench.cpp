#include "openssltree.h"
#include "pairs.h"
#include "rounds.h"

// The codec against that of OpenSSL, which makes and reads an equal tree, to and from equal bytes.
namespace {

constexpr size_t count = 1000;
constexpr size_t size = 2048;
constexpr int times = 10;

volatile size_t sink;

} // namespace

int main()
{
    const CPairs pairs(count, size);
    std::vector<std::vector<unsigned char>> names; // with their terminator, as ours
    std::vector<const unsigned char*> starts;
    std::vector<size_t> sizes;
    for (const std::u16string& name : pairs.names) {
        auto& units = names.emplace_back();
        for (const char16_t unit : name)
            units.insert(units.end(),
                         {static_cast<unsigned char>(unit >> 8), static_cast<unsigned char>(unit)});
        units.insert(units.end(), {0, 0});
    }
    for (const auto& name : names) {
        starts.push_back(name.data());
        sizes.push_back(name.size());
    }
    const auto make = [&] {
        return makeTree(count, starts.data(), sizes.data(), pairs.Content(0).data(), size);
    };
    treePairs* const tree = make();
    const bool equal = encodeTree(tree) == pairs.encoded.size();
    freeTree(tree);
    if (!equal)
        return 2;

    bench::CGroup group;
    const auto repeated = [&group](auto body) {
        return group.Add([body] {
            for (int i = 0; i < times; ++i)
                body();
        });
    };
    const size_t encode = repeated([&] {
        pairs.EncodeTo([](size_t room) { return std::make_unique_for_overwrite<uint8_t[]>(room); });
    });
    const size_t theirEncode = repeated([&] {
        treePairs* const theirs = make();
        sink = encodeTree(theirs);
        freeTree(theirs);
    });
    const size_t decode = repeated([&] { sink = pairs.Decode(); });
    const size_t theirDecode = repeated([&] {
        treePairs* const theirs = decodeTree(pairs.encoded.data(), pairs.encoded.size());
        sink = countOfTree(theirs);
        freeTree(theirs);
    });
    group.Run(2 * bench::usualRounds);
    bench::row("DER encode, tree built / OpenSSL 3", "1,000 x 2 KiB, native",
               group.Ratios(encode, theirEncode), 0.65);
    bench::row("DER decode / OpenSSL 3", "1,000 x 2 KiB, native", group.Ratios(decode, theirDecode),
               0.10);
    return 0;
}
