#include "backup/blob/backupview.h"
#include "backup/blob/dernode.h"
#include "require.h"

#include <algorithm>
#include <string>
#include <vector>

namespace {

constexpr int deepest = 24; // a backup has four levels

struct told_t {
    std::string text;              // the kinds and octets
    std::vector<uint32_t> numbers; // the integers
};

// Copies what can be read of the element into a node and tells it, and checks that every view lies
// in the element.
void copyTree(const CDerElement& element, CDerNode& node, told_t& told, int depth = 0)
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
        told.text += '(' + std::to_string(items.Count());
        for (size_t i = 0; i < items.Count(); ++i) {
            inside(items[i].Encoded());
            copyTree(items[i], node.Child(i), told, depth + 1);
        }
    } else if (element.DecodeInteger(contents)) {
        node.SetInteger(told.numbers.emplace_back(element.Integer()));
        told.text += 'i';
    } else {
        const auto octets = element.Octets();
        node.SetOctets(octets);
        told.text += 'o' + std::to_string(octets.size()) + ':';
        told.text.append(octets.begin(), octets.end());
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::span<const uint8_t> input(data, size);
    CBackupView view;
    require(view.Decode(input) ? view.elementCount >= 2 : !view.Sound());

    CDerNode node, again;
    told_t from, to;
    copyTree(CDerElement(input), node, from);
    const auto encoded = node.Encode();
    copyTree(CDerElement(encoded), again, to);
    require(from.text == to.text);
    // A number above 0x7FFFFFFF may lose octets FF on the way, never gain any.
    require(std::ranges::equal(from.numbers, to.numbers, [](uint32_t value, uint32_t copy) {
        return value < 0x80000000 ? copy == value : copy <= value;
    }));
    return 0;
}
