#include "child.h"
#include "rounds.h"
#include "vlhost/pluginhost.h"
#include "vlhost/takebackup.h"
#include "vlhost/variants.h"

// The commands of the reference host against the plug-in's own call, which is most of what they
// have to do, on a user's files as they are installed.
namespace {

using namespace VLONLINEIDSLib;

void setText(HKEY root, const wchar_t* key, const wchar_t* name, const std::wstring& text)
{
    RegSetKeyValueW(root, key, name, REG_SZ, text.c_str(), static_cast<DWORD>(2 * text.size() + 2));
}

void writeFile(const std::wstring& path, const std::string& content)
{
    const CFileHandle file(CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                       FILE_ATTRIBUTE_NORMAL, nullptr));
    DWORD written = 0;
    WriteFile(file.get(), content.data(), static_cast<DWORD>(content.size()), &written, nullptr);
}

} // namespace

// The argument is the number of files; without one it is that of the table.
int main(int argc, char** argv)
{
    const int count = argc > 1 ? std::atoi(argv[1]) : 5000;
    const std::wstring bin = bench::programFolder();
    setText(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Veltrano\\Applications", L"BinDir", bin);
    std::wstring folder(MAX_PATH, L'\0');
    folder.resize(GetEnvironmentVariableW(L"APPDATA", folder.data(), MAX_PATH));
    for (const wchar_t* part : {L"\\Veltrano", L"\\KRS", L"\\Templates"})
        CreateDirectoryW((folder += part).c_str(), nullptr);
    for (int i = 0; i < count; ++i)
        writeFile(folder + L"\\t" + std::to_wstring(i) + L".vlm", std::string(1024, 'x'));
    writeFile(folder + L"\\updata.vls", "state");
    const std::wstring dll = bin + L"VLOnlineIDs.dll";
    const std::wstring named = L"--plugin \"" + dll + L"\" ";
    const std::wstring file = L"C:\\bench.vlb";

    const CPluginHost host(std::string(dll.begin(), dll.end()));
    CVariant data;
    bench::CGroup backing;
    const size_t backup =
        backing.Add([&] { bench::runProgram(L"vlhost.exe", named + L"backup --force " + file); });
    const size_t itsExport = backing.Add([&] {
        CVariant names;
        CVariant array;
        host.Get<IVLKTBackupRestore2>().get()->GetStorageData(names.Get(), array.Get());
    });
    backing.Run(9);
    const std::string workload = std::to_string(count) + " x 1 KiB";
    bench::row("vlhost backup / the plug-in's own call", workload,
               backing.Ratios(backup, itsExport), 1.5);

    setBytes(data, takeBackup(host).bytes);
    bench::CGroup restoring;
    const size_t restore =
        restoring.Add([&] { bench::runProgram(L"vlhost.exe", named + L"restore " + file); });
    const size_t itsRestore =
        restoring.Add([&] { host.Get<IVLKTBackupRestore2>().get()->SetStorageData(data.Get()); });
    restoring.Run(9);
    bench::row("vlhost restore over existing files / the plug-in's own call", workload,
               restoring.Ratios(restore, itsRestore), 2.0);
    return 0;
}
