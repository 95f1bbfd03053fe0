#include "common/scoped.h"
#include "plugin/vlktpages.h"
#include "ratio.h"
#include "storage/textfile.h"
#include "support/fakesettings.h"

#include <cstring>
#include <span>
#include <string>
#include <vector>

// The operations as a host calls them: export against mapping and copying the same files once,
// restore against copying the array once, as it belongs to the host, and deleting and writing the
// same files, each by nothing but the platform's calls.
namespace {

const std::wstring folder = [] {
    wchar_t temporary[MAX_PATH] = {};
    GetTempPathW(MAX_PATH, temporary);
    return std::wstring(temporary) + L"vlbackupbench\\";
}();

std::wstring nameOf(int index)
{
    return L"template" + std::to_wstring(index) + L".vlm";
}

void writeRaw(const std::wstring& path, std::span<const uint8_t> content)
{
    const CFileHandle file(CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                       FILE_ATTRIBUTE_NORMAL, nullptr));
    DWORD written = 0;
    WriteFile(file.get(), content.data(), static_cast<DWORD>(content.size()), &written, nullptr);
}

void deleteRaw()
{
    WIN32_FIND_DATAW entry = {};
    const CSearchHandle search(FindFirstFileW((folder + L"*.vlm").c_str(), &entry));
    if (!search)
        return;
    do {
        DeleteFileW((folder + entry.cFileName).c_str());
    } while (FindNextFileW(search.get(), &entry));
}

void copyRaw(int count, std::vector<uint8_t>& out)
{
    size_t at = 0;
    for (int i = 0; i < count; ++i) {
        MappedFile mapped = mapfile_open(folder + nameOf(i));
        std::memcpy(out.data() + at, mapped.view, mapped.size);
        at += mapped.size;
        mapfile_close(mapped);
    }
}

bool within = true;
VLONLINEIDSLib::IVLKTBackupRestore2* plugin = nullptr;

void row(const std::string& name, double limit, const std::function<void()>& measured,
         const std::function<void()>& baseline)
{
    within = bench::ratio(name.c_str(), limit, 9, measured, baseline) <= limit && within;
}

void measure(const char* what, int count, size_t size, size_t restored, double exportLimit,
             double restoreLimit)
{
    deleteRaw();
    const std::vector<uint8_t> content(size, 0x5A);
    for (int i = 0; i < count; ++i)
        writeRaw(folder + nameOf(i), content);
    writeRaw(folder + L"updata_temp.vls", {}); // data is present by it
    VARIANT backup = {};
    row(
        std::string("export of ") + what + " / mapping and copying them", exportLimit,
        [&] {
            VariantClear(&backup);
            plugin->GetStorageData(nullptr, &backup);
        },
        [&] {
            std::vector<uint8_t> out(static_cast<size_t>(count) * size);
            copyRaw(count, out);
        });

    for (int i = static_cast<int>(restored); i < count; ++i)
        DeleteFileW((folder + nameOf(i)).c_str());
    VariantClear(&backup);
    plugin->GetStorageData(nullptr, &backup);
    row(
        "restore of " + std::to_string(restored) + " of them / copying, deleting, writing them",
        restoreLimit, [&] { plugin->SetStorageData(&backup); },
        [&] {
            SAFEARRAY* copy = nullptr;
            SafeArrayCopy(backup.parray, &copy);
            deleteRaw();
            const std::span array(static_cast<const uint8_t*>(copy->pvData), restored * size);
            for (size_t i = 0; i < restored; ++i)
                writeRaw(folder + nameOf(static_cast<int>(i)), array.subspan(i * size, size));
            SafeArrayDestroy(copy);
        });
    VariantClear(&backup);
    deleteRaw();
}

} // namespace

int main()
{
    CreateDirectoryW(folder.c_str(), nullptr);
    fakeSettings_t settings;
    settings.values = {{L"path_localstorage_dir", folder},
                       {L"path_cachestorage_dir", folder + L"cache\\"},
                       {L"path_quicklink_filename", folder + L"quicklinks.txt"},
                       {L"is_personalMode", L"1"}};
    void* object = nullptr;
    CComCreator<CComObject<CVLKTPages>>::CreateInstance(
        nullptr, __uuidof(VLONLINEIDSLib::IVLKTBackupRestore2), &object);
    plugin = static_cast<VLONLINEIDSLib::IVLKTBackupRestore2*>(object);
    measure("1,000 templates of 4 KiB", 1000, 0x1000, 1000, 1.5, 1.3);
    measure("200 templates of 1 MiB", 200, 0x100000, 100, 1.5, 1.3);
    return within ? 0 : 1;
}
