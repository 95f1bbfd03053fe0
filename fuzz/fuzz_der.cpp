#include "formats/backup/backupview.h"
#include "require.h"
#include "support/backupbytes.h"

#include <vector>

namespace {

constexpr int deepest = 24; // a backup has four levels

// Reads all that can be read of the element.
void readAll(const CDerElement& element, int depth = 0)
{
    const size_t size = element.Encoded().size();
    require(element.NarrowText().size() <= size && element.WideText().size() <= size &&
            element.Octets().size() <= size);
    CDerSequenceView items;
    if (depth < deepest && items.Decode(element))
        for (size_t i = 0; i < items.Count(); ++i)
            readAll(items[i], depth + 1);
}

// A backup as it is made now, and one of all the older forms.
std::vector<bytes> goodBackups()
{
    const bytes file = filePair(L"a.vlm", "AB");
    const bytes link = seq({wide(L"Mail"), wide(L"x"), wide(L"a.vlm"), integer(3), wide(L"id")});
    const bytes categories = seq({seq({wide(L"Work"), wide(L"1")})});
    const bytes document = seq({narrow(R"({"settings":{"current":{"open_guard_desk_qa":"K"}}})")});
    const bytes legacy = seq({integer(1), wide(L"Ctrl+Win+72"), octets("list")});
    return {seq({seq({file}), seq({link}), categories, document}),
            seq({seq({file}), seq({link}), categories, legacy, integer(0)})};
}

} // namespace

// The first byte says which good backup the rest changes; the rest is the input itself if there is
// none of that number.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size == 0)
        return 0;
    const std::span<const uint8_t> rest(data + 1, size - 1);
    static const std::vector<bytes> good = goodBackups();
    const auto input =
        data[0] < good.size() ? changed(good[data[0]], rest) : bytes(rest.begin(), rest.end());
    CBackupView view;
    require(view.Decode(input) ? view.elementCount >= 2 : !view.Sound());
    readAll(CDerElement(input));
    return 0;
}
