#pragma once

#include "support/tracedecoder.h"

#include <cstdint>
#include <map>

// A trace as a tree of lines: a call is "> name", and what happened in it follows, indented by one.
// Line ends within a text show as {lf} and {crlf}, a blank at its end as {sp}. Date and time stamps
// are left out.

inline void replaceAll(std::string& text, const std::string& what, const std::string& by)
{
    for (size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += by.size())
        text.replace(at, what.size(), by);
}

// traceTree throws when a call ends that hasn't begun, or doesn't end.
//
// onlyThread: 0 for all threads
inline std::string traceTree(const decodedTrace_t& trace, uint32_t onlyThread = 0)
{
    std::string tree;
    std::map<uint32_t, size_t> depths;
    for (const decodedRecord_t& record : trace.records) {
        if ((onlyThread && record.thread != onlyThread) || std::strchr("tT", record.level))
            continue;
        size_t& depth = depths[record.thread];
        if (record.level == '<') {
            if (!record.text.empty() || depth-- == 0)
                throw std::runtime_error("a call ends that hasn't begun, or with a text");
            continue;
        }
        std::string line = std::string(depth, ' ') + record.level + ' ' + record.text;
        if (line.ends_with(' '))
            line.replace(line.size() - 1, 1, "{sp}");
        replaceAll(line, "\r\n", "{crlf}");
        replaceAll(line, "\n", "{lf}");
        tree += line + '\n';
        depth += record.level == '>';
    }
    for (const auto& [thread, depth] : depths)
        if (depth != 0)
            throw std::runtime_error("a call without an end");
    return tree;
}
