#include "pages.h"
#include "pairs.h"
#include "rounds.h"

#include <cstring>

// The codec against one copy of the encoded bytes into fresh pages, and its growth.
namespace {

volatile size_t sink; // keeps a result from being left out

struct target_t {
    double encode;
    double decode;
};

void compare(size_t count, size_t size, const std::string& workload, target_t target)
{
    const CPairs pairs(count, size);
    bench::CGroup group;
    const size_t encode = group.Add([&] {
        CDerTree tree;
        pairs.Build(tree);
        const CFreshPages out(tree.Measure());
        tree.Write(out.data());
    });
    const size_t decode = group.Add([&] { sink = pairs.Decode(); });
    const size_t copy = group.Add([&] {
        const CFreshPages out(pairs.encoded.size());
        std::memcpy(out.data(), pairs.encoded.data(), pairs.encoded.size());
        sink = out.data()[pairs.encoded.size() / 2];
    });
    group.Run(2 * bench::usualRounds);
    bench::row("DER encode, tree built / a copy into fresh pages", workload,
               group.Ratios(encode, copy), target.encode);
    bench::row("DER decode / a copy into fresh pages", workload, group.Ratios(decode, copy),
               target.decode);
}

void growth()
{
    const CPairs few(1000, 100);
    const CPairs many(100000, 100);
    bench::CGroup group;
    const auto cases = [&group](const CPairs& pairs, int times) {
        group.Add([&pairs, times] {
            for (int i = 0; i < times; ++i) {
                CDerTree tree;
                pairs.Build(tree);
                sink = tree.Encode().size();
            }
        });
        group.Add([&pairs, times] {
            for (int i = 0; i < times; ++i)
                sink = pairs.Decode();
        });
    };
    cases(few, 100); // as many pairs in all
    cases(many, 1);
    group.Run();
    const auto slopes = [&group](size_t less, size_t more) {
        std::vector<double> values = group.Slopes(less, more, 100);
        for (double& value : values)
            value += 1; // the smaller case was repeated 100 times
        return values;
    };
    bench::row("slope of DER encode", "1,000 to 100,000 pairs", slopes(0, 2), 1.10);
    bench::row("slope of DER decode", "1,000 to 100,000 pairs", slopes(1, 3), 1.10);
}

} // namespace

int main()
{
    compare(10000, 4096, "10,000 x 4 KiB", {1.05, 0.08});
    compare(30, 1 << 20, "30 x 1 MiB", {1.02, 0.01});
    compare(100000, 100, "100,000 x 100 B", {2.0, 1.0});
    growth();
    return 0;
}
