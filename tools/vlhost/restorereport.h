#pragma once

#include "restoreplan.h"

#include <string>
#include <vector>

#include <json/value.h>

// CRestoreReport prints what a restore or its undoing does, for people as it happens, in JSON as
// one document at the end.
class CRestoreReport
{
public:
    CRestoreReport(const char* schema, bool json) : m_schema(schema), m_asJson(json) {}

    // Text is for people alone, the members for the document alone.
    void Text(const std::string& text) const;
    Json::Value& operator[](const char* member) { return m_document[member]; }
    void Print() const;

    void Plan(const Json::Value& plan); // as jsonOfPlan makes it
    void NothingDone();                 // of a dry run; prints
    void SafetyCopy(unsigned number);
    void Differences(const std::vector<difference_t>& differences);

private:
    const char* m_schema;
    bool m_asJson;
    Json::Value m_document{Json::objectValue};
};
