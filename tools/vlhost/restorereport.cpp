#include "restorereport.h"

#include "common/text.h"
#include "formats/text/printable.h"
#include "print.h"
#include "safetycopy.h"
#include "shared/terminal.h"

#include <iomanip>
#include <iostream>
#include <sstream>

namespace {

// One line per file.
std::string textOfPlan(const Json::Value& plan)
{
    std::ostringstream text;
    for (const auto& file : plan["files"])
        text << "  " << std::left << std::setw(6) << file["action"].asString() << std::right
             << std::setw(12) << file["bytes"].asUInt64() << "  "
             << printable(file["path"].asString()) << '\n';
    for (const auto& [member, label] :
         {std::pair("quickLinks", "quick links"), std::pair("doNotPromptList", "addresses")})
        if (const Json::Value& file = plan[member]; file.isObject()) {
            text << "  " << label << ": ";
            if (file.isMember("count"))
                text << file["count"].asUInt64() << ", ";
            text << file["action"].asString() << ' ' << printable(file["path"].asString()) << '\n';
        }
    if (const Json::Value& categories = plan["categories"]; categories.isObject())
        text << "  categories: " << categories["count"].asUInt64() << " in place of "
             << categories["now"].asUInt64() << '\n';
    if (plan["appliesSettings"].asBool())
        text << "  settings: as in the backup\n";
    for (const auto& key : plan["settings"].getMemberNames())
        text << "  setting " << printable(key) << ": "
             << printable(plan["settings"][key].asString()) << '\n';
    return text.str();
}

} // namespace

void CRestoreReport::Text(const std::string& text) const
{
    if (!m_asJson && !isQuiet())
        std::cout << text << std::flush;
}

void CRestoreReport::Print() const
{
    if (m_asJson)
        printResult(m_schema, m_document, true);
}

void CRestoreReport::Plan(const Json::Value& plan)
{
    m_document["plan"] = plan;
    m_document["done"] = false;
    Text("plan:\n" + textOfPlan(plan));
}

void CRestoreReport::NothingDone()
{
    Text("nothing was done: --dry-run\n");
    Print();
}

void CRestoreReport::SafetyCopy(unsigned number)
{
    m_document["safetyCopy"] = number;
    Text("safety copy: " + std::to_string(number) + " in " +
         printable(utf8FromWide(safetyCopiesFolder())) + '\n');
}

void CRestoreReport::Differences(const std::vector<difference_t>& differences)
{
    Json::Value& list = m_document["differences"] = Json::Value(Json::arrayValue);
    for (const auto& difference : differences) {
        Json::Value one(Json::objectValue);
        one["item"] = difference.item;
        one["what"] = difference.what;
        list.append(one);
        Text(coloured(std::cout, colour_t::red, "difference") + ": " + printable(difference.item) +
             ": " + printable(difference.what) + '\n');
    }
}
