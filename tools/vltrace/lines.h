#pragma once

#include "consumer.h"
#include "filter.h"

#include <functional>
#include <string>

namespace vltrace {

// lineOptions_t is how records become lines.
struct lineOptions_t {
    bool chains = false; // each record with its chain of open functions, in place of nesting
    bool marks = true;   // a colour directive as "[colour 04] "; else it is left out
};

// linePrinter_t makes readable lines of a file: date, time, thread, level and text, with nesting.
// The header, in front, and damage, in its place, have a mark of their own.
class linePrinter_t : public traceConsumer_i
{
public:
    // put: gets one line or, with chains, several; each ends in a line feed
    linePrinter_t(filter_t filter, lineOptions_t options,
                  std::function<void(const std::string&)> put);

    void begin(const std::string& name) override;
    void take(const tracecore::traceItem_t& item, const tracecore::traceStep_t& step) override;

private:
    std::string recordLine(const tracecore::traceRecord_t& record,
                           const tracecore::traceStep_t& step) const;

    filter_t m_filter;
    lineOptions_t m_options;
    std::function<void(const std::string&)> m_put;
    size_t m_files = 0;
};

// damageText gives damage as a clause, as in "12 bytes skipped at offset 240: no record can begin
// here".
std::string damageText(const tracecore::traceDamage_t& damage);

} // namespace vltrace
