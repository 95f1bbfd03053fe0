#include "backupfixture.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "agent/linknames.h"
#include "plugin/vlktpages.h"

using namespace VLONLINEIDSLib;

namespace {

constexpr wchar_t dashBoardKey[] = L"SOFTWARE\\Veltrano\\Applications\\DashBoard";
constexpr wchar_t categoriesKey[] = L"SOFTWARE\\Veltrano\\Applications\\DashBoard\\QLCategories";

} // namespace

agentServer_t::agentServer_t()
    : m_buffer(CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0,
                                  linkSets[linkNipc].bufferSize, linkSets[linkNipc].buffer)),
      m_acknowledge(CreateEventW(nullptr, FALSE, FALSE, linkSets[linkNipc].acknowledge)),
      m_dataReady(CreateEventW(nullptr, FALSE, FALSE, linkSets[linkNipc].dataReady)),
      m_stop(CreateEventW(nullptr, TRUE, FALSE, nullptr)),
      m_thread([this] { serve(); })
{}

std::optional<agentServer_t::request_t> agentServer_t::taken()
{
    SetEvent(m_stop.get());
    if (m_thread.joinable())
        m_thread.join();
    return m_request;
}

void agentServer_t::serve()
{
    const HANDLE handles[] = {m_dataReady.get(), m_stop.get()};
    if (WaitForMultipleObjects(2, handles, FALSE, 60000) != WAIT_OBJECT_0)
        return;
    const auto* const buffer =
        static_cast<const char*>(MapViewOfFile(m_buffer.get(), FILE_MAP_READ, 0, 0, 0));
    const CKernelHandle payload(OpenFileMappingW(FILE_MAP_READ, FALSE, linkSets[linkNipc].payload));
    const auto* const body =
        static_cast<const char*>(MapViewOfFile(payload.get(), FILE_MAP_READ, 0, 0, 0));
    requestHeader_t header = {};
    std::memcpy(&header, buffer, sizeof header);
    m_request = {header.message, buffer + sizeof header, body};
    UnmapViewOfFile(body);
    UnmapViewOfFile(buffer);
    SetEvent(m_acknowledge.get());
}

backupTest::backupTest()
{
    m_root = std::filesystem::temp_directory_path().wstring() + L"vlbackup" +
             std::to_wstring(GetCurrentProcessId()) + L"\\";
    m_personal = m_root + L"personal\\";
    m_cache = m_root + L"cache\\";
    m_quickLinks = m_root + L"quicklinks.txt";
    m_settings.values = {{L"path_localstorage_dir", m_personal},
                         {L"path_cachestorage_dir", m_cache},
                         {L"path_quicklink_filename", m_quickLinks},
                         {L"show_training_prompt", L"1"},
                         {L"is_personalMode", L"1"}};
    clear();
    WNDCLASSW windowClass = {};
    windowClass.lpfnWndProc = DefWindowProcW;
    windowClass.lpszClassName = agentWindowName;
    RegisterClassW(&windowClass);
    m_agent = CreateWindowExW(0, agentWindowName, agentWindowName, 0, 0, 0, 1, 1, nullptr, nullptr,
                              nullptr, nullptr);
    void* out = nullptr;
    CComCreator<CComObject<CVLKTPages>>::CreateInstance(nullptr, __uuidof(IVLKTBackupRestore2),
                                                        &out);
    m_plugin = static_cast<IVLKTBackupRestore2*>(out);
    m_plugin->QueryInterface(__uuidof(IVLKTBackupRestore3), &out);
    m_plugin3 = static_cast<IVLKTBackupRestore3*>(out);
}

backupTest::~backupTest()
{
    m_plugin3->Release();
    m_plugin->Release();
    DestroyWindow(m_agent);
    clear();
}

void backupTest::write(const std::wstring& path, const std::string& content) const
{
    std::ofstream(std::filesystem::path(path), std::ios::binary) << content;
}

fileMap backupTest::files(const std::wstring& folder) const
{
    fileMap found;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        std::string& content = found[entry.path().filename().wstring()];
        content.resize(entry.file_size());
        std::ifstream(entry.path(), std::ios::binary)
            .read(content.data(), static_cast<std::streamsize>(content.size()));
    }
    return found;
}

void backupTest::clear() const
{
    std::error_code ignored;
    std::filesystem::remove_all(m_root, ignored);
    std::filesystem::create_directories(m_personal, ignored);
    std::filesystem::create_directories(m_cache, ignored);
    RegDeleteTreeW(HKEY_CURRENT_USER, dashBoardKey);
}

void backupTest::setCategory(const std::wstring& name, const std::wstring& text) const
{
    RegSetKeyValueW(HKEY_CURRENT_USER, categoriesKey, name.c_str(), REG_SZ, text.c_str(),
                    static_cast<DWORD>(2 * text.size() + 2));
}

std::wstring backupTest::category(const std::wstring& name) const
{
    wchar_t text[100] = {};
    DWORD size = sizeof text;
    RegGetValueW(HKEY_CURRENT_USER, categoriesKey, name.c_str(), RRF_RT_REG_SZ, nullptr, text,
                 &size);
    return text;
}

HRESULT backupTest::restore(const bytes& backup) const
{
    ATL::CComVariant data;
    byteArray(data, backup);
    return m_plugin->SetStorageData(&data);
}

bool backupTest::traced(const std::wstring& message)
{
    const auto messages = m_trace.messages();
    return std::find(messages.begin(), messages.end(), message) != messages.end();
}

std::vector<std::pair<WPARAM, LPARAM>> backupTest::posted() const
{
    std::vector<std::pair<WPARAM, LPARAM>> found;
    const UINT number = RegisterWindowMessageW(restoreDoneName);
    MSG message = {};
    while (PeekMessageW(&message, m_agent, number, number, PM_REMOVE))
        found.emplace_back(message.wParam, message.lParam);
    return found;
}
