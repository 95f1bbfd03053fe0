#include "child.h"
#include "pages.h"
#include "plugin/vlktpages.h"
#include "rounds.h"
#include "storage/textfile.h"
#include "support/fakesettings.h"

#include <psapi.h>

#include <atomic>
#include <cstring>
#include <span>
#include <thread>

// The operations as a host calls them: export against listing, mapping and copying the same files
// once, restore against copying the array once, as it belongs to the host, and listing, deleting
// and writing the same files, each by nothing but the platform's calls. Then the memory that they
// take, in processes of their own.
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

template <class Body> void eachListed(Body body)
{
    WIN32_FIND_DATAW entry = {};
    const CSearchHandle search(FindFirstFileW((folder + L"*.vlm").c_str(), &entry));
    if (!search)
        return;
    do {
        body(folder + entry.cFileName);
    } while (FindNextFileW(search.get(), &entry));
}

void deleteRaw()
{
    eachListed([](const std::wstring& path) { DeleteFileW(path.c_str()); });
}

void copyRaw(size_t bytes)
{
    const CFreshPages out(bytes);
    size_t at = 0;
    eachListed([&](const std::wstring& path) {
        MappedFile mapped = mapfile_open(path);
        std::memcpy(out.data() + at, mapped.view, mapped.size);
        at += mapped.size;
        mapfile_close(mapped);
    });
}

void makeFiles(int count, size_t size)
{
    deleteRaw();
    const std::vector<uint8_t> content(size, 0x5A);
    for (int i = 0; i < count; ++i)
        writeRaw(folder + nameOf(i), content);
    writeRaw(folder + L"updata_temp.vls", {}); // data is present by it
}

// CProduct is the plug-in's object, with settings that name the folder.
class CProduct
{
public:
    CProduct()
    {
        CreateDirectoryW(folder.c_str(), nullptr);
        m_settings.values = {{L"path_localstorage_dir", folder},
                             {L"path_cachestorage_dir", folder + L"cache\\"},
                             {L"path_quicklink_filename", folder + L"quicklinks.txt"},
                             {L"is_personalMode", L"1"}};
        void* object = nullptr;
        CComCreator<CComObject<CVLKTPages>>::CreateInstance(
            nullptr, __uuidof(VLONLINEIDSLib::IVLKTBackupRestore2), &object);
        m_object = static_cast<VLONLINEIDSLib::IVLKTBackupRestore2*>(object);
    }

    void Export()
    {
        VariantClear(&m_backup);
        m_object->GetStorageData(nullptr, &m_backup);
        if (m_backup.vt == VT_EMPTY)
            std::exit(2);
    }
    void Restore() { m_object->SetStorageData(&m_backup); }
    SAFEARRAY* Array() const { return m_backup.parray; }
    void Drop() { VariantClear(&m_backup); }

private:
    fakeSettings_t m_settings;
    VLONLINEIDSLib::IVLKTBackupRestore2* m_object = nullptr;
    VARIANT m_backup = {};
};

void compareExport(CProduct& product, const char* workload, int count, size_t size, double target)
{
    makeFiles(count, size);
    bench::CGroup group;
    const size_t mine = group.Add([&] { product.Export(); }, [&] { product.Drop(); });
    const size_t floor = group.Add([&] { copyRaw(static_cast<size_t>(count) * size); });
    group.Run();
    bench::row("export of templates / list, map, copy once", workload, group.Ratios(mine, floor),
               target);
}

void compareRestore(CProduct& product, const char* workload, int count, size_t size)
{
    makeFiles(count, size);
    product.Export();
    bench::CGroup group;
    const size_t mine = group.Add([&] { product.Restore(); });
    const size_t floor = group.Add([&] {
        SAFEARRAY* copy = nullptr;
        SafeArrayCopy(product.Array(), &copy);
        deleteRaw();
        const std::span array(static_cast<const uint8_t*>(copy->pvData),
                              static_cast<size_t>(count) * size);
        for (int i = 0; i < count; ++i)
            writeRaw(folder + nameOf(i), array.subspan(static_cast<size_t>(i) * size, size));
        SafeArrayDestroy(copy);
    });
    group.Run();
    bench::row("restore of templates / copy the array, list, delete, write", workload,
               group.Ratios(mine, floor), 1.05);
}

// privateBytes is the memory of this process that no file lies under.
size_t privateBytes()
{
    PROCESS_MEMORY_COUNTERS counters = {};
    GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters);
    return counters.PagefileUsage;
}

// printPeak is the child's work: the most memory that an operation took beyond what was there
// before, in bytes.
int printPeak(bool restoring)
{
    CProduct product;
    if (restoring)
        product.Export();
    const size_t before = privateBytes();
    std::atomic<bool> ended = false;
    size_t most = before;
    std::thread watcher([&] {
        while (!ended) {
            most = std::max(most, privateBytes());
            Sleep(1);
        }
    });
    if (restoring)
        product.Restore();
    else
        product.Export();
    ended = true;
    watcher.join();
    std::printf("%zu\n", std::max(most, privateBytes()) - before);
    return 0;
}

void comparePeaks(const char* workload, int count, size_t size, double target)
{
    makeFiles(count, size);
    for (const bool restoring : {false, true}) {
        std::vector<double> ratios;
        for (int round = 0; round < 9; ++round)
            ratios.push_back(std::stod(bench::runProgram(L"backup_bench.exe",
                                                         restoring ? L"restore" : L"export")) /
                             (static_cast<double>(count) * static_cast<double>(size)));
        bench::row(restoring ? "restore, peak memory beyond the array / backup bytes"
                             : "export, peak memory / backup bytes",
                   workload, ratios, target);
    }
}

} // namespace

int wmain(int argc, wchar_t** argv)
{
    if (argc > 1)
        return printPeak(argv[1] == std::wstring(L"restore"));
    CProduct product;
    compareExport(product, "1,000 x 4 KiB", 1000, 0x1000, 1.10);
    compareExport(product, "200 x 1 MiB", 200, 0x100000, 1.15);
    compareExport(product, "10,000 x 64 B", 10000, 64, 1.20);
    compareRestore(product, "1,000 x 4 KiB", 1000, 0x1000);
    compareRestore(product, "100 x 1 MiB", 100, 0x100000);
    product.Drop();
    comparePeaks("200 x 1 MiB", 200, 0x100000, 1.05);
    comparePeaks("5,000 x 4 KiB", 5000, 0x1000, 1.3);
    deleteRaw();
    return 0;
}
