#pragma once

#include "record.h"
#include "setup.h"
#include "shared/toolerror.h"

#include <string>
#include <vector>

// removal_t takes back what a record names. Folder and record are the caller's and outlive it.
class removal_t
{
public:
    removal_t(const std::wstring& root, record_t& record) : m_root(root), m_record(record) {}

    // attempt runs one step; what fails is noted, and the removal goes on.
    template <class Step> bool attempt(const Step& step)
    {
        try {
            step();
            return true;
        } catch (const CToolError& error) {
            m_result.lines.emplace_back(error.what());
            m_result.complete = false;
            return false;
        }
    }

    // run removes what is ours and brings back what was there before. What fails stays in the
    // record, and the record then stays.
    removed_t run();

private:
    void takeBackValue(const written_t& entry);
    void takeBackFile(const written_t& entry);
    void innermostFirst(std::vector<std::wstring>& made, void (*remove)(const std::wstring&));

    const std::wstring& m_root;
    record_t& m_record;
    removed_t m_result;
};
