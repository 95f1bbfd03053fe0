#pragma once

#include "consumer.h"

#include <functional>
#include <iosfwd>
#include <map>
#include <string>
#include <vector>

namespace vltrace {

// lineOptions_t is how records become lines.
struct lineOptions_t {
    bool chains = false; // each record with its chain of open functions, in place of nesting
    bool marks = true;   // a colour directive as "[colour 04] "; else it is left out
    const std::ostream* terminal = nullptr; // gets errors and notes in colour, if it shows it
};

// linePrinter_t makes readable lines: date, time, process if there are several files, thread, level
// and text, with nesting. The header, in front, and damage, in its place, have a mark of their own. With
// chains, the header of a file comes before the first record of it, and of one without any not at all.
class linePrinter_t : public traceConsumer_i
{
public:
    // put: gets one line or, with chains, several; each ends in a line feed
    linePrinter_t(lineOptions_t options, std::function<void(std::string&)> put);

    void begin(const source_t& source) override;
    void takeHeader(const source_t& source, const tracecore::traceHeader_t& header) override;
    void takeDamage(const source_t& source, const tracecore::traceDamage_t& damage,
                    const tracecore::traceStep_t& step) override;
    void takeRecord(const traceEvent_t& event) override;

private:
    void showHeader(const source_t& source);
    void appendChain(const tracecore::traceStep_t& step);

    lineOptions_t m_options;
    std::function<void(std::string&)> m_put;
    std::string m_line;
    std::map<size_t, std::vector<std::string>> m_headers; // not shown yet, by the source's number
    momentTexts_t m_texts;
    size_t m_files = 0;
};

// appendMessage appends a message to a line, with its status' name and meaning.
//
// marks: a colour directive as "[colour 04] "; else it is left out
void appendMessage(std::string& line, const message_t& message, bool marks);

// skippedText counts bytes, as in "12 bytes skipped".
std::string skippedText(uint64_t bytes);

constexpr size_t deepestIndent = 40; // deeper calls stay in one column

// damageText gives damage as a clause, as in "12 bytes skipped at offset 240: no record can begin
// here".
std::string damageText(const tracecore::traceDamage_t& damage);

} // namespace vltrace
