#pragma once

#include "consumer.h"
#include "textout.h"

#include <iosfwd>

namespace vltrace {

// csvLines_t writes comma-separated values (RFC 4180, UTF-8): a line of names, then one line for
// each wanted record and each damage.
class csvLines_t : public traceConsumer_i
{
public:
    explicit csvLines_t(std::ostream& out);

    void takeDamage(const source_t& source, const tracecore::traceDamage_t& damage,
                    const tracecore::traceStep_t& step) override;
    void takeRecord(const traceEvent_t& event) override;
    void finish() override { m_out.flush(); }

private:
    textOut_t m_out;
    momentTexts_t m_texts;
};

} // namespace vltrace
