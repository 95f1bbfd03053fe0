#include "backup/settingsdocument.h"
#include "backup/storagedata.h"
#include "common/text.h"
#include "quicklinks/quicklinks.h"
#include "rounds.h"
#include "storage/paths.h"
#include "support/fakesettings.h"

#include <fstream>

// How the work on quick links and settings grows with their number: the exponent is 1 for work in
// proportion, and 2 for work with its square.
namespace {

constexpr uint32_t less = 1000;
constexpr uint32_t more = 100000;

const std::wstring folder = [] {
    wchar_t temporary[MAX_PATH] = {};
    GetTempPathW(MAX_PATH, temporary);
    return std::wstring(temporary) + L"vlslopebench\\";
}();

void addLinks(QL& ql, uint32_t count)
{
    for (uint32_t i = 0; i < count; ++i) {
        const std::string number = std::to_string(i);
        ql.add("name " + number, "https://" + number + ".example/",
               "c:\\templates\\" + number + ".vlm", i % 7, "id", false);
    }
}

// linksToFilter are the user's own and others in turn.
QL linksToFilter(uint32_t count, bool distinct)
{
    QL ql;
    ql.records.clear();
    const std::string own = utf8FromWide(appdata_templatesdir());
    for (uint32_t i = 0; i < count; ++i) {
        QLRecord& record = ql.records.emplace_back();
        record.kind = 1;
        record.url = "https://" + (distinct ? std::to_string(i) : std::string("one")) + ".example/";
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

// encodedLinks is the element of a backup with that many links.
std::vector<uint8_t> encodedLinks(uint32_t count)
{
    CDerTree list;
    list.SetSequence(count);
    for (uint32_t i = 0; i < count; ++i) {
        const std::wstring number = std::to_wstring(i);
        CDerNode& link = list.Child(i);
        link.SetSequence(6);
        link.Child(0).SetWide(L"name " + number);
        link.Child(1).SetWide(L"https://" + number + L".example/");
        link.Child(2).SetWide(number + L".vlm");
        link.Child(3).SetInteger(i % 7);
        link.Child(4).SetWide(std::wstring(L"id"));
        link.Child(5).SetInteger(0);
    }
    return list.Encode();
}

std::string listFile(uint32_t lines)
{
    const std::wstring path = folder + L"list" + std::to_wstring(lines) + L".txt";
    std::ofstream file(utf8FromWide(path), std::ios::binary);
    for (uint32_t i = 0; i < lines; ++i)
        file << "https://" << i << ".example/\r\n";
    return utf8FromWide(path);
}

} // namespace

int main()
{
    CreateDirectoryW(folder.c_str(), nullptr);
    fakeSettings_t settings;
    const std::wstring linkFile = folder + L"quicklinks.txt";
    settings.values = {{L"path_quicklink_filename", linkFile}, {L"path_localstorage_dir", folder}};
    bench::CGroup group;
    std::vector<std::string> names;
    // make gives the body for so many; the smaller one is repeated, which the slope takes back.
    const auto pair = [&](const std::string& name, auto make) {
        names.push_back(name);
        const auto add = [&group](uint32_t repeats, std::function<void()> body) {
            group.Add([repeats, body] {
                for (uint32_t i = 0; i < repeats; ++i)
                    body();
            });
        };
        add(more / less, make(less));
        add(1, make(more));
    };
    const auto none = [linkFile] { DeleteFileW(linkFile.c_str()); };
    none();

    QL saved[2]; // filled below, at a time when no file is there
    for (const uint32_t count : {less, more})
        addLinks(saved[count == more], count);
    const auto of = [&saved](uint32_t count) -> QL& { return saved[count == more]; };
    const auto fileOf = [](uint32_t count) {
        return folder + L"saved" + std::to_wstring(count) + L".txt";
    };
    for (const uint32_t count : {less, more})
        of(count).save(fileOf(count), false);
    pair("load of links", [&](uint32_t count) {
        return [&, count] {
            settings.values[L"path_quicklink_filename"] = fileOf(count);
            const QL loaded;
            settings.values[L"path_quicklink_filename"] = linkFile;
        };
    });
    pair("adding links", [](uint32_t count) {
        return [count] {
            QL ql;
            addLinks(ql, count);
        };
    });
    pair("updating links",
         [&](uint32_t count) { return [&, count] { addLinks(of(count), count); }; });
    pair("saving links", [&](uint32_t count) {
        return [&, count] { of(count).save(folder + L"save.txt", false); };
    });
    for (const bool distinct : {true, false})
        pair(distinct ? "filtering links, targets distinct" : "filtering links, targets equal",
             [distinct](uint32_t count) {
                 return [ql = linksToFilter(count, distinct), list = listOfItems(count / 10)] {
                     std::vector<QLRecord> keep;
                     ql.filter(list, keep);
                 };
             });
    pair("restore of links", [&](uint32_t count) {
        return [bytes = encodedLinks(count), none] {
            none();
            CStorageData::RestoreQuickLinks(CDerElement(bytes), TextForm::wide);
            none();
        };
    });
    pair("settings document with a long list", [&](uint32_t count) {
        return [&settings, path = wideFromUtf8(listFile(count))] {
            settings.values[L"path_dontpromptlist_filename"] = path;
            CDerTree slot;
            ExportSettings(&slot);
            const std::vector<uint8_t> bytes = slot.Encode();
            const CDerElement element(bytes);
            RestoreSettings(&element);
        };
    });
    group.Run(9);
    for (size_t i = 0; i < names.size(); ++i) {
        std::vector<double> slopes = group.Slopes(2 * i, 2 * i + 1, more / less);
        for (double& slope : slopes)
            slope += 1; // for the repeats
        bench::row("slope of " + names[i], "1,000 to 100,000", slopes, 1.10);
    }
    return 0;
}
