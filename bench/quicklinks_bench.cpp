#include "common/text.h"
#include "quicklinks/quicklinks.h"
#include "ratio.h"
#include "storage/paths.h"

#include <string>

namespace {

constexpr uint32_t less = 10000;
constexpr uint32_t more = 100000;

void addLinks(QL& ql, uint32_t count)
{
    for (uint32_t i = 0; i < count; ++i) {
        const std::string number = std::to_string(i);
        ql.add("name " + number, "https://" + number + ".example/",
               "c:\\templates\\" + number + ".vlm", i % 7, "id", false);
    }
}

// linksToFilter are the user's own and others in turn, each with a target of its own.
QL linksToFilter(uint32_t count)
{
    QL ql;
    const std::string own = utf8FromWide(appdata_templatesdir());
    for (uint32_t i = 0; i < count; ++i) {
        QLRecord& record = ql.records.emplace_back();
        record.kind = 1;
        record.url = "https://" + std::to_string(i) + ".example/";
        record.manifest = (i % 2 ? own : "d:\\shared\\") + std::to_string(i) + ".vlm";
    }
    return ql;
}

std::string listOfItems(uint32_t count)
{
    std::string list;
    for (uint32_t i = 0; i < count; ++i)
        list += "https://" + std::to_string(2 * i) + ".EXAMPLE/,";
    return list;
}

} // namespace

// Work that grows with the number of records gives 10 in each row; work that grows with its square
// gives 100.
int main()
{
    bool within = true;
    const auto row = [&](const char* name, const auto& measured, const auto& baseline) {
        within = bench::ratio(name, 15, 5, measured, baseline) <= 15 && within;
    };
    row(
        "quick links: 100,000 new against 10,000",
        [] {
            QL ql;
            addLinks(ql, more);
        },
        [] {
            QL ql;
            addLinks(ql, less);
        });

    QL many;
    QL few;
    addLinks(many, more);
    addLinks(few, less);
    row(
        "quick links: 100,000 updated against 10,000", [&] { addLinks(many, more); },
        [&] { addLinks(few, less); });

    const QL manyToFilter = linksToFilter(more);
    const QL fewToFilter = linksToFilter(less);
    const std::string manyItems = listOfItems(more / 10);
    const std::string fewItems = listOfItems(less / 10);
    std::vector<QLRecord> keep;
    row(
        "quick links: filter 100,000 against 10,000", [&] { manyToFilter.filter(manyItems, keep); },
        [&] { fewToFilter.filter(fewItems, keep); });
    return within ? 0 : 1;
}
