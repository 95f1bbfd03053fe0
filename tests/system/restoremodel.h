#pragma once

#include "common/scoped.h"
#include "support/registry.h"
#include "support/state.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <functional>
#include <map>
#include <optional>
#include <stdexcept>

#include <json/reader.h>

// A user below C:\hostile, and a second restore, written plainly and without the product's reader:
// where the two leave different states, one of them is wrong.

inline const std::wstring user = LR"(C:\hostile\user\)";
inline const std::wstring own = LR"(C:\Hostile\User/own\)"; // as the setting has it
inline const std::wstring dashboard = LR"(SOFTWARE\Veltrano\Applications\DashBoard)";
inline const std::wstring settings = LR"(SOFTWARE\Veltrano\Settings)";
inline const std::wstring categories = dashboard + LR"(\QLCategories)";

// stateNow is all that a restore may touch, and what surrounds it: the files below C:\hostile and
// those right in C:\, and the user's values. Folders stay where they were made.
inline state_t stateNow()
{
    state_t state;
    addFiles(state, LR"(\\?\C:\)", 0);
    addFiles(state, LR"(\\?\C:\hostile\)");
    addValues(state, HKEY_CURRENT_USER, settings);
    addValues(state, HKEY_CURRENT_USER, dashboard);
    std::erase_if(state, [](const auto& one) {
        return one.first.starts_with(L'\\') && one.first.ends_with(L'\\');
    });
    return state;
}

// outsideNow is what else is on the disk, except what a fresh process prints.
inline state_t outsideNow()
{
    state_t state;
    addFiles(state, LR"(C:\)", 9, false);
    std::erase_if(state, [](const auto& one) {
        return one.first.starts_with(LR"(C:\hostile\)") || one.first.starts_with(LR"(C:\VL\)") ||
               one.first.ends_with(L".tmp");
    });
    return state;
}

inline void setData(const std::wstring& key, const std::wstring& name, const std::wstring& text,
                    DWORD type = REG_SZ)
{
    setValue(HKEY_CURRENT_USER, key, name.c_str(), text, type);
}

// apply makes the state as it was; folders stay.
inline void apply(const state_t& state)
{
    const state_t before = stateNow();
    if (before == state)
        return;
    for (const auto& [name, content] : before)
        if (!state.contains(name) && name.starts_with(L'\\'))
            DeleteFileW(name.c_str());
    RegDeleteKeyW(HKEY_CURRENT_USER, categories.c_str());
    for (const auto& [name, content] : state) {
        const size_t bar = name.find(L'|');
        const std::wstring key = name.substr(0, bar);
        CRegistryKey made;
        if (name.starts_with(L'\\')) {
            if (!before.contains(name) || before.at(name) != content)
                writeFile(name.substr(4), content);
        } else if (RegCreateKeyW(HKEY_CURRENT_USER, key.c_str(), made.put()) == 0 &&
                   !content.empty()) {
            RegSetValueExW(made.get(), name.c_str() + bar + 1, 0, static_cast<DWORD>(content[0]),
                           reinterpret_cast<const BYTE*>(content.data() + 1),
                           static_cast<DWORD>(content.size() - 1));
        }
    }
}

// firstState makes a user with files, quick links, categories and settings.
inline state_t firstState()
{
    for (const wchar_t* file : {L"own\\old.vlm", L"own\\bank.vlm", L"own\\updata.vls",
                                L"own\\kept.txt", L"shared\\team.vlm", L"never.txt", L"links.txt"})
        writeFile(user + file, "old");
    std::filesystem::create_directories(user + L"cache");
    for (const auto& [key, name, text] :
         {std::tuple{settings, L"path_localstorage_dir", own},
          {settings, L"path_cachestorage_dir", user + L"cache\\"},
          {settings, L"path_alienstorage_dirs", user + L"shared"},
          {settings, L"path_quicklink_filename", user + L"links.txt"},
          {settings, L"path_dontpromptlist_filename", user + L"never.txt"},
          {settings, L"show_training_prompt", L"old"},
          {settings, L"open_guard_desk_qa", L"old"},
          {settings, L"useGrabbingCreds", L"old"},
          {dashboard, L"LastQLCategory", L"old"},
          {categories, L"Work", L"old"}})
        setData(key, name, text);
    setData(categories, L"Home", L"%HOME%", REG_EXPAND_SZ);
    return stateNow();
}

// element_t is an element as it stands in the bytes, empty for a missing one, with its readings:
// what has another form is read as its bytes are.
struct element_t {
    uint8_t tag = 0;
    std::string_view whole, content;

    std::string_view octets() const { return tag == 4 ? content : whole; }
    uint32_t integer() const
    {
        uint32_t value = 0;
        for (const char octet : tag == 2 && content.size() <= 4 ? content : "")
            value = value << 8 | static_cast<uint8_t>(octet);
        return value;
    }
    std::wstring wide() const
    {
        if (tag == 0x0C)
            return wideFromUtf8(content).c_str();
        const bool isText = tag && std::strchr("\x1E\x12\x13\x14\x15\x16\x19\x1A", tag);
        std::string units(isText ? content : whole);
        units.resize(units.size() / 2 * 2);
        for (size_t i = 0; tag == 0x1E && i < units.size(); i += 2)
            std::swap(units[i], units[i + 1]);
        std::wstring text(units.size() / 2, L'\0');
        std::memcpy(text.data(), units.data(), units.size());
        return text.c_str();
    }
};

inline std::optional<element_t> firstElement(std::string_view data)
{
    const auto octet = [&](size_t i) {
        return static_cast<uint8_t>(i < data.size() ? data[i] : 0);
    };
    size_t at = 1, length = 0;
    if ((octet(0) & 0x1F) == 0x1F) // a tag of several octets
        while (octet(at++) & 0x80)
            ;
    size_t more = octet(at) < 0x80 ? 1 : octet(at++) & 0x7Fu;
    if (more == 0 || more > 4 || data.size() < at + more)
        return {};
    for (; more > 0; --more)
        length = length << 8 | octet(at++);
    if (length > data.size() - at)
        return {};
    return element_t{octet(0), data.substr(0, at + length), data.substr(at, length)};
}

// elements_t are those of a sequence, none of anything else.
struct elements_t : std::vector<element_t> {
    explicit elements_t(std::string_view sequence)
    {
        const auto outer = firstElement(sequence);
        std::string_view rest = outer && outer->tag == 0x30 ? outer->content : "";
        for (; !rest.empty(); rest.remove_prefix(back().whole.size())) {
            const auto element = firstElement(rest);
            if (!element) {
                clear();
                break;
            }
            push_back(*element);
        }
    }
    element_t at(size_t index) const { return index < size() ? (*this)[index] : element_t(); }
};

// model_t restores a backup, and calls step after each change, be it half of a file's.
class model_t
{
public:
    explicit model_t(std::function<void()> step = [] {}) : m_step(std::move(step)) {}

    HRESULT restore(std::string_view backup) const
    {
        const elements_t parts(backup);
        if (parts.size() < 2)
            return E_UNEXPECTED;
        restoreFiles(elements_t(parts[0].whole));
        restoreLinks(elements_t(parts[1].whole), parts.size() == 2);
        if (parts.size() > 2)
            restoreCategories(elements_t(parts[2].whole));
        try {
            if (parts.size() == 4)
                restoreSettings(elements_t(parts[3].whole));
            return S_OK;
        } catch (const std::exception&) { // a member of a kind that can't be
            return E_UNEXPECTED;
        }
    }

private:
    template <class Text> static Text fileName(const Text& path)
    {
        for (size_t at = path.size(); at > 0; --at)
            if (path[at - 1] == '\\' || path[at - 1] == '/' || path[at - 1] == ':')
                return path.substr(at);
        return path;
    }
    void write(const std::wstring& path, std::string_view content) const
    {
        CFileHandle file(
            CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
        if (!file)
            return;
        m_step();
        DWORD written = 0;
        WriteFile(file.get(), content.data(), static_cast<DWORD>(content.size()), &written,
                  nullptr);
        file.reset();
        m_step();
    }
    void remove(const std::wstring& path) const
    {
        if (DeleteFileW(path.c_str()))
            m_step();
    }
    void set(const std::wstring& key, const std::wstring& name, const std::wstring& text) const
    {
        setData(key, name, text);
        m_step();
    }

    void restoreFiles(const elements_t& pairs) const
    {
        for (const wchar_t* mask : {L"*.vlm", L"*.vls"}) {
            WIN32_FIND_DATAW found;
            const CSearchHandle search(FindFirstFileW((own + mask).c_str(), &found));
            for (bool more{search}; more; more = FindNextFileW(search.get(), &found))
                remove(own + found.cFileName);
        }
        remove(user + L"links.txt");
        for (const element_t& element : pairs) {
            const elements_t pair(element.whole);
            const std::wstring name = pair.at(0).wide();
            if (!name.empty())
                write(name.starts_with(L"alien|") ? name.substr(6) : own + fileName(name),
                      pair.at(1).octets());
        }
    }

    struct link_t {
        std::string manifest, name, target, id;
        uint32_t profile;
        bool isDialog, withoutCredentials;
    };

    void restoreLinks(const elements_t& records, bool isOld) const
    {
        const auto text = [&](const element_t& element) {
            return isOld ? std::string(std::string(element.octets()).c_str())
                         : utf8FromWide(element.wide());
        };
        std::vector<link_t> links;
        for (const element_t& element : records) {
            const elements_t fields(element.whole);
            if (fields.size() != 5 && fields.size() != 6)
                continue;
            const std::string file = fileName('\\' + text(fields[2]));
            std::string target = text(fields[1]), lower = target;
            for (char& c : lower)
                c = c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
            // The setting's folder in lower case, with the variable in place of its first part.
            link_t link = {"%appdata%\\own\\" + utf8FromWide(wideFromUtf8(text(fields[2]))),
                           text(fields[0]),
                           target,
                           text(fields[4]),
                           fields[3].integer(),
                           lower.find("iexplore.exe") != std::string::npos ||
                               lower.ends_with(".exe"),
                           fields.at(5).integer() == 1};
            if (file.empty() || link.name.empty() || target.empty())
                continue;
            const auto same = std::find_if(links.begin(), links.end(), [&](const link_t& one) {
                return fileName(one.manifest) == file &&
                       (one.profile == link.profile || link.profile == 0xFFFFFFFF);
            });
            if (same != links.end())
                link.manifest = same->manifest;
            same == links.end() ? links.push_back(link) : void(*same = link);
        }
        std::string all;
        for (const link_t& link : links)
            all += "[ShortCutRecord]\nManifest=" + link.manifest +
                   (link.isDialog ? "\nDlgpath=" : "\nUrl=") + link.target + "\nName=" + link.name +
                   "\nProfile=" + std::to_string(link.profile) + "\nManifestID=" + link.id +
                   "\nQLwoCred=" + (link.withoutCredentials ? "1\n" : "0\n");
        for (size_t i = 0; (i = all.find('\n', i)) != std::string::npos; i += 2)
            all.insert(i, "\r");
        if (!links.empty())
            write(user + L"links.txt", all);
    }

    void restoreCategories(const elements_t& pairs) const
    {
        RegDeleteKeyW(HKEY_CURRENT_USER, categories.c_str());
        m_step();
        set(dashboard, L"LastQLCategory", L"");
        CRegistryKey key;
        RegCreateKeyW(HKEY_CURRENT_USER, categories.c_str(), key.put());
        m_step();
        for (const element_t& element : pairs) {
            const elements_t pair(element.whole);
            set(categories, pair.at(0).wide(), pair.at(1).wide());
        }
    }

    void restoreSettings(const elements_t& parts) const
    {
        std::wstring prompt, key, grabbing, list;
        Json::Value root;
        if (parts.size() == 1 && !parse(std::string(parts[0].octets()).c_str(), root))
            return;
        if (parts.size() == 1) {
            const Json::Value current = member(member(root, "settings", true), "current");
            const auto truth = [&](const char* name) {
                const Json::Value value = member(current, name);
                if (value.empty())
                    return L"";
                const bool is = value.isString() ? value != "" : value.size() || value.asBool();
                return is ? L"1" : L"-1";
            };
            const auto text = [&](const char* name) {
                const Json::Value value = member(current, name);
                if (value.isNumeric())
                    throw std::invalid_argument(name);
                return value.empty() ? L"" : wideFromUtf8(value.asString().c_str());
            };
            prompt = truth("show_training_prompt");
            grabbing = truth("useGrabbingCreds");
            key = text("open_guard_desk_qa");
            text("path_dontpromptlist_filename"); // which is not written
        } else if (parts.size() > 1) {
            prompt = parts[0].integer() == 1 ? L"1" : L"-1";
            key = parts[1].wide();
            if (parts.size() == 3) // the element with its tag is the text
                list = wideFromUtf8(std::string(parts[2].whole).c_str());
        }
        for (const auto& [name, text] : {std::pair{L"show_training_prompt", prompt},
                                         {L"open_guard_desk_qa", key},
                                         {L"useGrabbingCreds", grabbing}})
            if (!text.empty())
                set(settings, name, text);
        if (!list.empty()) // the first half of its bytes
            write(user + L"never.txt", {reinterpret_cast<const char*>(list.data()), list.size()});
    }
    static bool parse(const char* text, Json::Value& root)
    {
        try {
            return Json::Reader().parse(text, root);
        } catch (const Json::Exception&) {
            return false; // nested too deeply
        }
    }
    static Json::Value member(const Json::Value& value, const char* name, bool isRoot = false)
    {
        if (!value.isObject() && (isRoot ? !value.isNull() : !value.empty()))
            throw std::invalid_argument(name);
        return value.isObject() ? value[name] : Json::Value();
    }

    std::function<void()> m_step;
};
