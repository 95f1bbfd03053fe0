#pragma once

#include "formats/der/dernode.h"
#include "formats/der/derview.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

// CPairs is what the codecs encode and decode: pairs of a file's name and its content, as the
// templates of a backup are.
class CPairs
{
public:
    CPairs(size_t count, size_t size) : m_size(size), m_content(count * size)
    {
        for (size_t i = 0; i < m_content.size(); ++i)
            m_content[i] = static_cast<uint8_t>(i * 31);
        for (size_t i = 0; i < count; ++i) {
            std::u16string& name = names.emplace_back();
            for (const char c : "t" + std::to_string(i) + ".vlm")
                name += static_cast<char16_t>(c);
        }
        CDerTree tree;
        Build(tree);
        encoded = tree.Encode();
    }

    std::span<const uint8_t> Content(size_t i) const
    {
        return {m_content.data() + i * m_size, m_size};
    }

    void Build(CDerNode& root) const
    {
        root.SetSequence(names.size());
        for (size_t i = 0; i < names.size(); ++i) {
            CDerNode& pair = root.Child(i);
            pair.SetSequence(2);
            pair.Child(0).SetWide(names[i]);
            pair.Child(1).SetOctets(Content(i));
        }
    }

    // EncodeTo builds the tree and writes it where allocate gives room for that many bytes.
    template <class Allocate> void EncodeTo(Allocate allocate) const
    {
        CDerTree tree;
        Build(tree);
        auto room = allocate(tree.Measure());
        tree.Write(&room[0]);
    }

    // Decode looks at each name and content, in place. Returns: the content's bytes
    size_t Decode() const
    {
        size_t total = 0;
        CDerSequenceView list;
        CDerSequenceView pair;
        if (!list.Decode(encoded))
            return 0;
        for (const CDerElement& element : list) {
            std::span<const uint8_t> content;
            if (pair.Decode(element) && pair[1].DecodeOctets(content))
                total += content.size() + pair[0].Encoded().size();
        }
        return total;
    }

    std::vector<std::u16string> names;
    std::vector<uint8_t> encoded;

private:
    size_t m_size;
    std::vector<uint8_t> m_content;
};
