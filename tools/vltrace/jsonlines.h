#pragma once

#include "consumer.h"
#include "textout.h"

#include <iosfwd>
#include <string>

namespace vltrace {

// jsonLines_t writes JSON Lines: one object for each header, damage and wanted record.
class jsonLines_t : public traceConsumer_i
{
public:
    explicit jsonLines_t(std::ostream& out) : m_out(out) {}

    void takeHeader(const source_t& source, const tracecore::traceHeader_t& header) override;
    void takeDamage(const source_t& source, const tracecore::traceDamage_t& damage,
                    const tracecore::traceStep_t& step) override;
    void takeRecord(const traceEvent_t& event) override;
    void finish() override { m_out.flush(); }

private:
    void write(const traceEvent_t& event);

    textOut_t m_out;
    momentTexts_t m_texts;
};

// addStatus adds the members status, statusName and statusText of a status other than 0.
void addStatus(jsonObject_t& object, const message_t& message);

} // namespace vltrace
