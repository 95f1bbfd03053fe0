#pragma once

#include "shared/jsonstring.h"

#include <charconv>
#include <concepts>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>

namespace vltrace {

// appendNumber appends a number in decimal.
void appendNumber(std::string& out, std::integral auto number)
{
    char digits[24];
    out.append(digits, std::to_chars(digits, digits + sizeof digits, number).ptr);
}

// jsonObject_t appends an object to a text, member by member; the end of its life closes it.
class jsonObject_t
{
public:
    explicit jsonObject_t(std::string& out, bool forPage = false) : m_out(out), m_forPage(forPage)
    {
        m_out += '{';
    }
    ~jsonObject_t() { m_out += '}'; }
    jsonObject_t(const jsonObject_t&) = delete;
    jsonObject_t& operator=(const jsonObject_t&) = delete;

    // name: nothing in it needs an escape
    void add(std::string_view name, std::string_view text)
    {
        appendJsonString(value(name), text, m_forPage);
    }
    void add(std::string_view name, std::integral auto number)
    {
        appendNumber(value(name), number);
    }
    void addTrue(std::string_view name) { value(name) += "true"; }

    // value appends the name alone: the value is up to the caller.
    std::string& value(std::string_view name)
    {
        if (!std::exchange(m_first, false))
            m_out += ',';
        ((m_out += '"') += name) += "\": ";
        return m_out;
    }

private:
    std::string& m_out;
    bool m_forPage;
    bool m_first = true;
};

// textOut_t collects text for a stream, which is slow with small pieces.
class textOut_t
{
public:
    explicit textOut_t(std::ostream& out) : m_out(out) {}
    ~textOut_t() { flush(); }
    textOut_t(const textOut_t&) = delete;
    textOut_t& operator=(const textOut_t&) = delete;

    // text is what has been collected: append to it, then call written.
    std::string text;
    void written()
    {
        if (text.size() >= pieceSize)
            flush();
    }
    void flush()
    {
        m_out.write(text.data(), static_cast<std::streamsize>(text.size()));
        text.clear();
    }

private:
    static constexpr size_t pieceSize = 1 << 16;
    std::ostream& m_out;
};

} // namespace vltrace
