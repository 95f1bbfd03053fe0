#pragma once

#include "shared/outputfile.h"
#include "verbs.h"

#include <functional>
#include <ostream>
#include <streambuf>

class CJsonDocument;

// CWrittenFile is the output of a verb that writes a file, and reports it.
class CWrittenFile : private std::streambuf
{
public:
    explicit CWrittenFile(const Call& call)
        : m_call(call), m_file(call.output, call.force, {call.input, call.other}, call.out)
    {}

    std::ostream& Stream() noexcept { return m_stream; }

    // Complete puts the file in its place, and reports its name and size. Beside a file on standard
    // output, where the report would be in the way, it goes to standard error, and only if there is more.
    //
    // more: adds to the JSON document of that schema
    void Complete(const char* schema, const std::function<void(CJsonDocument&)>& more = {});

private:
    // Counted here, as a pipe has no position.
    std::streamsize xsputn(const char* text, std::streamsize size) override;
    int overflow(int c) override;

    const Call& m_call;
    COutputFile m_file;
    std::ostream m_stream{this};
    uint64_t m_size = 0;
};
