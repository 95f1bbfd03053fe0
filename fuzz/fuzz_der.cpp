#include "backup/blob/backupview.h"
#include "backup/blob/dernode.h"
#include "require.h"

#include <vector>

namespace {

constexpr int deepest = 24; // a backup has four levels

// Copies what can be read of the element into a node, and checks that every view lies in the
// element.
void copyTree(const CDerElement& element, CDerNode& node, int depth = 0)
{
    const auto bytes = element.Encoded();
    const auto inside = [&](std::span<const uint8_t> part) {
        require(part.empty() || (part.data() >= bytes.data() &&
                                 part.data() + part.size() <= bytes.data() + bytes.size()));
    };
    const auto text = element.NarrowText();
    inside({reinterpret_cast<const uint8_t*>(text.data()), text.size()});
    inside(element.Octets());
    require(element.WideText().size() <= bytes.size());

    CDerSequenceView items;
    std::span<const uint8_t> contents;
    if (depth < deepest && items.Decode(element)) {
        node.SetSequence(items.Count());
        for (size_t i = 0; i < items.Count(); ++i) {
            inside(items[i].Encoded());
            copyTree(items[i], node.Child(i), depth + 1);
        }
    } else if (element.DecodeInteger(contents)) {
        node.SetInteger(element.Integer());
    } else {
        node.SetOctets(element.Octets());
    }
}

std::vector<uint8_t> copyOf(std::span<const uint8_t> bytes)
{
    CDerNode node;
    copyTree(CDerElement(bytes), node);
    return node.Encode();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::span<const uint8_t> input(data, size);
    CBackupView view;
    require(view.Decode(input) ? view.elementCount >= 2 : !view.Sound());

    // One copy shortens numbers, the next one puts a zero before those that came back positive.
    // From then on a copy is equal.
    const auto settled = copyOf(copyOf(input));
    require(copyOf(settled) == settled);
    return 0;
}
