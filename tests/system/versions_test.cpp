#include "installation.h"

namespace {

std::string wideBytes(const std::wstring& text)
{
    return {reinterpret_cast<const char*>(text.data()), text.size() * sizeof(wchar_t)};
}

TEST(Versions, EachFileSaysWhatItIs)
{
    const fs::path bin = fs::path(moduleFileName(nullptr)).parent_path().parent_path();
    for (const wchar_t* name : {L"vlhost.exe", L"vlbackup.exe", L"vltrace.exe", L"vlsetup.exe",
                                L"vlagent.exe", L"VLUserConsole.exe", L"VLOnlineIDs.dll",
                                L"VloSet.dll", L"VLFPApi.dll", L"Branding.dll"}) {
        SCOPED_TRACE(utf8FromWide(name));
        const std::string file = fileBytes(bin / name);
        for (const auto& [item, value] :
             {std::pair(L"OriginalFilename", name), {L"ProductVersion", L"1.0.0"}})
            EXPECT_NE(file.npos, file.find(wideBytes(item + (L'\0' + std::wstring(value)))));
        const CLoadedModule module(
            LoadLibraryExW((bin / name).c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE));
        EXPECT_TRUE(std::wstring(name).ends_with(L".dll") ||
                    FindResourceW(module.get(), MAKEINTRESOURCEW(1), RT_GROUP_ICON));
    }
}

} // namespace
