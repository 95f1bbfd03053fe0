#include "backup/blob/backupview.h"
#include "backup/blob/dernode.h"

#include <algorithm>
#include <cstdlib>

namespace {

constexpr int deepest = 24; // a backup has four levels

void require(bool holds)
{
    if (!holds)
        std::abort();
}

// Copies what can be read of the element into a node, and checks that every view lies in the
// element.
void copyTree(const CDerElement& element, CDerNode& node, int depth)
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

void expectSame(const CDerElement& from, const CDerElement& to, int depth)
{
    CDerSequenceView items;
    CDerSequenceView copies;
    std::span<const uint8_t> contents;
    if (depth < deepest && items.Decode(from)) {
        require(copies.Decode(to) && copies.Count() == items.Count());
        for (size_t i = 0; i < items.Count(); ++i)
            expectSame(items[i], copies[i], depth + 1);
    } else if (from.DecodeInteger(contents)) {
        // A number above 0x7FFFFFFF may lose octets FF on the way, never gain any.
        const uint32_t value = from.Integer();
        require(to.DecodeInteger(contents) &&
                (value < 0x80000000 ? to.Integer() == value : to.Integer() <= value));
    } else {
        const auto octets = from.Octets();
        require(to.DecodeOctets(contents) &&
                std::equal(octets.begin(), octets.end(), contents.begin(), contents.end()));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::span<const uint8_t> input(data, size);
    CBackupView view;
    require(view.Decode(input) ? view.elementCount >= 2 : !view.Sound());

    CDerNode node;
    copyTree(CDerElement(input), node, 0);
    const auto encoded = node.Encode();
    expectSame(CDerElement(input), CDerElement(encoded), 0);
    return 0;
}
